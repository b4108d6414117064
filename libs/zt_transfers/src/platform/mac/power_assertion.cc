#include "platform/mac/power_assertion.h"

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace zt_transfers {

CPowerAssertion::CPowerAssertion(std::string reason, ILog& log)
    : reason_(std::move(reason)), log_(log) {}

void CPowerAssertion::inhibit() {
  if (assertion_ != kIOPMNullAssertionID) {
    return;
  }
  const CFStringRef name =
      CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(reason_.data()),
                              static_cast<CFIndex>(reason_.size()), kCFStringEncodingUTF8, false);
  const IOReturn result = IOPMAssertionCreateWithName(kIOPMAssertionTypePreventUserIdleSystemSleep,
                                                      kIOPMAssertionLevelOn, name, &assertion_);
  if (name != nullptr) {
    CFRelease(name);
  }
  if (result == kIOReturnSuccess) {
    return;
  }
  assertion_ = kIOPMNullAssertionID;
  if (!std::exchange(failureTold_, true)) {
    log_.warning(
        "The machine may go to sleep during transfers, it cannot be kept awake: the power manager "
        "answers " +
        std::to_string(result));
  }
}

void CPowerAssertion::release() {
  if (assertion_ != kIOPMNullAssertionID) {
    IOPMAssertionRelease(std::exchange(assertion_, kIOPMNullAssertionID));
  }
}

std::unique_ptr<ISleepInhibitor> makeSleepInhibitor(std::string reason, ILog& log) {
  return std::make_unique<CPowerAssertion>(std::move(reason), log);
}

}  // namespace zt_transfers
