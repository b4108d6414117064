#include "platform/mac/dialogs/message_dialogs.h"

#include <new>

#include "platform/mac/base/system_text.h"

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

// The lowest bits hold the button; the others concern check boxes and fields.
bool isDefaultButton(CFOptionFlags response) {
  constexpr CFOptionFlags kButton = 0x3;
  return (response & kButton) == kCFUserNotificationDefaultResponse;
}

}  // namespace

void CAlertDialogMac::show(const std::string& text) {
  constexpr CFTimeInterval kNoTimeLimit = 0;
  const CfOwned<CFStringRef> message = createSystemString(text, kCFStringEncodingMacRoman);
  CFUserNotificationDisplayNotice(kNoTimeLimit, kCFUserNotificationPlainAlertLevel, nullptr,
                                  nullptr, nullptr, CFSTR(""), message.get(), nullptr);
}

std::unique_ptr<IAlertDialog> createAlertDialog() {
  return std::unique_ptr<IAlertDialog>(new (std::nothrow) CAlertDialogMac);
}

bool CConfirmDialogMac::ask(const std::string& text, int kind) {
  constexpr CFTimeInterval kNoTimeLimit = 0;
  const CfOwned<CFStringRef> message = createSystemString(text, kCFStringEncodingMacRoman);
  // Remains if the question cannot be shown, which counts as "Yes".
  CFOptionFlags response = kCFUserNotificationDefaultResponse;
  CFUserNotificationDisplayAlert(kNoTimeLimit, levelFor(kind), nullptr, nullptr, nullptr, CFSTR(""),
                                 message.get(), CFSTR("Yes"), CFSTR("No"), nullptr, &response);
  return isDefaultButton(response);
}

std::unique_ptr<IConfirmDialog> createConfirmDialog() {
  return std::unique_ptr<IConfirmDialog>(new (std::nothrow) CConfirmDialogMac);
}

}  // namespace zantrio
