#pragma once

#include <deque>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "base/executor.h"
#include "base/mutex.h"

namespace zt_transfers {

// A few threads for work that would hold up a network thread: reading, hashing, file status.
// Jobs begin in the order in which they were posted.
//
// Thread: any, except that start and stop are called by the owner's thread only.
class CWorkerPool final : public IExecutor {
 public:
  explicit CWorkerPool(std::string name) : name_(std::move(name)) {}
  ~CWorkerPool() { stop(); }
  CWorkerPool(const CWorkerPool&) = delete;
  CWorkerPool& operator=(const CWorkerPool&) = delete;

  void start(unsigned threads);
  // Drops what has not begun, waits for what has.
  void stop();

  void post(std::function<void()> task) override;

 private:
  void run();

  const std::string name_;
  std::vector<std::thread> threads_;

  CMutex mutex_;
  CConditionVariable posted_;
  std::deque<std::function<void()>> tasks_ GUARDED_BY(mutex_);
  bool running_ GUARDED_BY(mutex_) = false;
};

}  // namespace zt_transfers
