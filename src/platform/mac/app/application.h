#pragma once

#include <memory>

#include "browser/application_commands.h"

namespace zantrio {

// The NSApplication with its delegate and menu. Create it before the framework starts and destroy
// it after the framework has ended. One per process, on the main thread.
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
