#pragma once

#include <memory>

namespace zantrio {

// Prepares the platform once the main window exists. Ownership: the browser client's. Thread: UI.
class IPlatformInit {
 public:
  virtual ~IPlatformInit() = default;

  // Call it once, before the bridges are registered. Failures go to the system's log and do not
  // keep the application from starting.
  virtual void init() = 0;
};

// Null when memory runs out. Implemented by each platform.
std::unique_ptr<IPlatformInit> createPlatformInit();

}  // namespace zantrio
