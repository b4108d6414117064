#pragma once

#include <memory>
#include <string>

#include "base/log.h"

namespace zt_transfers {

// Keeps the machine from going to sleep. Thread: one at a time; calls may take seconds.
class ISleepInhibitor {
 public:
  // Lets the machine sleep again.
  virtual ~ISleepInhibitor() = default;

  // Does nothing, and logs that once, where the system cannot do it.
  virtual void inhibit() = 0;
  virtual void release() = 0;
};

// The system's inhibitor. `reason` is shown to users who ask why the machine stays awake.
std::unique_ptr<ISleepInhibitor> makeSleepInhibitor(std::string reason, ILog& log);

}  // namespace zt_transfers
