#pragma once

#include <IOKit/pwr_mgt/IOPMLib.h>

#include <string>

#include "power/sleep_inhibitor.h"

namespace zt_transfers {

// An assertion of the power manager that the system must not go to sleep while its user is idle. It
// ends with the process. Users see it with its reason in "pmset -g assertions".
class CPowerAssertion final : public ISleepInhibitor {
 public:
  CPowerAssertion(std::string reason, ILog& log);
  CPowerAssertion(const CPowerAssertion&) = delete;
  CPowerAssertion& operator=(const CPowerAssertion&) = delete;
  ~CPowerAssertion() override { release(); }

  void inhibit() override;
  void release() override;

 private:
  const std::string reason_;
  ILog& log_;
  IOPMAssertionID assertion_ = kIOPMNullAssertionID;
  bool failureTold_ = false;
};

}  // namespace zt_transfers
