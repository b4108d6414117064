#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace zantrio {

// Waits for something that takes its time at the start, with an upper bound for all waits
// together: whoever asks again and again is not held up again and again. Thread: any.
class CPatience {
 public:
  explicit CPatience(std::chrono::milliseconds limit);

  // What is waited for has happened: nobody waits any more.
  void end();

  // Returns when end() was called, or when all waits together have taken as long as the limit.
  void wait();

 private:
  using Clock = std::chrono::steady_clock;

  std::mutex mutex_;
  std::condition_variable ended_;
  bool isOver_ = false;   // guarded by mutex_
  Clock::duration left_;  // guarded by mutex_
};

}  // namespace zantrio
