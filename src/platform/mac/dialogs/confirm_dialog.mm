#include "platform/mac/dialogs/confirm_dialog.h"

#include <new>

#include "platform/mac/base/system_string.h"

namespace zantrio {
namespace {

CFOptionFlags levelFor(int kind) {
  switch (kind) {
    case IConfirmDialog::kCaution:
      return kCFUserNotificationCautionAlertLevel;
    case IConfirmDialog::kPlain:
      return kCFUserNotificationPlainAlertLevel;
    default:
      return kCFUserNotificationStopAlertLevel;
  }
}

// The answer's lowest bits tell the button; those above it concern fields that there are none of.
bool isDefaultButton(CFOptionFlags response) {
  constexpr CFOptionFlags kButton = 0x3;
  return (response & kButton) == kCFUserNotificationDefaultResponse;
}

}  // namespace

bool CConfirmDialogMac::ask(const std::string& text, int kind) {
  constexpr CFTimeInterval kNoTimeLimit = 0;
  const CfOwned<CFStringRef> message = createSystemString(text, kCFStringEncodingMacRoman);
  // Stays where the question cannot be shown, which therefore counts as "Yes".
  CFOptionFlags response = kCFUserNotificationDefaultResponse;
  CFUserNotificationDisplayAlert(kNoTimeLimit, levelFor(kind), nullptr, nullptr, nullptr, CFSTR(""),
                                 message.get(), CFSTR("Yes"), CFSTR("No"), nullptr, &response);
  return isDefaultButton(response);
}

std::unique_ptr<IConfirmDialog> createConfirmDialog() {
  return std::unique_ptr<IConfirmDialog>(new (std::nothrow) CConfirmDialogMac);
}

}  // namespace zantrio
