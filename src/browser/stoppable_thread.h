#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace zantrio {

// Becomes true once and asks work on another thread to end. The work looks at it from time to time.
using StopFlag = std::atomic<bool>;

// Work on a thread of its own that can be asked to end. The work must not throw.
//
// Thread: the owner's, except the work.
class StoppableThread {
 public:
  explicit StoppableThread(std::function<void(const StopFlag& stop)> work);
  StoppableThread(const StoppableThread&) = delete;
  StoppableThread& operator=(const StoppableThread&) = delete;
  // Asks the work to end and waits for that.
  ~StoppableThread();

  // Does not wait.
  void requestStop() { stop_ = true; }

 private:
  StopFlag stop_{false};
  std::thread thread_;
};

}  // namespace zantrio
