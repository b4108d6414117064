#pragma once

#include <functional>

namespace zt_transfers {

// Runs tasks on a thread, or several, of its own. Thread: any.
class IExecutor {
 public:
  // The task must not throw. It is dropped when the executor does not run.
  virtual void post(std::function<void()> task) = 0;

 protected:
  ~IExecutor() = default;
};

}  // namespace zt_transfers
