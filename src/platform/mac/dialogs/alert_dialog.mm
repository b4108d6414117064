#include "platform/mac/dialogs/alert_dialog.h"

#include <new>

#include "platform/mac/base/system_string.h"

namespace zantrio {

void CAlertDialogMac::show(const std::string& text) {
  constexpr CFTimeInterval kNoTimeLimit = 0;
  const CfOwned<CFStringRef> message = createSystemString(text, kCFStringEncodingMacRoman);
  CFUserNotificationDisplayNotice(kNoTimeLimit, kCFUserNotificationPlainAlertLevel, nullptr,
                                  nullptr, nullptr, CFSTR(""), message.get(), nullptr);
}

std::unique_ptr<IAlertDialog> createAlertDialog() {
  return std::unique_ptr<IAlertDialog>(new (std::nothrow) CAlertDialogMac);
}

}  // namespace zantrio
