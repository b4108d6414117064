#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace zantrio {

// Waits for one event with a timeout that all waits share, so that repeated callers are not delayed
// again and again. Thread: any.
class CWaitBudget {
 public:
  explicit CWaitBudget(std::chrono::milliseconds total);

  // The event has happened: ends all waits, also later ones.
  void end();

  // Returns after end(), or when all waits together have taken the total time.
  void wait();

 private:
  using Clock = std::chrono::steady_clock;

  std::mutex mutex_;
  std::condition_variable ended_;
  bool hasEnded_ = false;  // guarded by mutex_
  Clock::duration left_;   // guarded by mutex_
};

}  // namespace zantrio
