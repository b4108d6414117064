#pragma once

#include <memory>

#include "browser/application_commands.h"

namespace zantrio {

// The system's application object with its delegate and its menu, from before the framework starts
// until after it has ended. One a process, on the main thread.
class CApplicationMac {
 public:
  explicit CApplicationMac(std::unique_ptr<IApplicationCommands> commands);
  CApplicationMac(const CApplicationMac&) = delete;
  CApplicationMac& operator=(const CApplicationMac&) = delete;
  ~CApplicationMac();

 private:
  class Impl;
  const std::unique_ptr<Impl> impl_;
};

}  // namespace zantrio
