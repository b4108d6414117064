#pragma once

#include <memory>

namespace zantrio {

// Prepares the platform for the application once its main window stands.
// Ownership: the browser client's. Thread: UI.
class IPlatformInit {
 public:
  virtual ~IPlatformInit() = default;

  // To be called once, before the bridges are registered. What fails is told to the system's log
  // and does not keep the application from starting.
  virtual void init() = 0;
};

// Null when there was no memory for it.
std::unique_ptr<IPlatformInit> createPlatformInit();

}  // namespace zantrio
