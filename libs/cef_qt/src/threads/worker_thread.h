// A thread that runs posted tasks.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "threads/task_runner.h"

namespace cef_qt {

class WorkerThread final : public TaskRunner {
 public:
  WorkerThread();
  ~WorkerThread() override;

  bool post(const QueuedTask& task, int64_t delayMs) override;
  void stop() override;
  void join() override;

 private:
  void run();
  // Blocks until the next task is due; nullopt once stopped.
  std::optional<QueuedTask> waitForTask();

  std::mutex mutex_;
  std::condition_variable changed_;
  DueQueue queue_;        // guarded by mutex_
  bool stopped_ = false;  // guarded by mutex_
  std::thread thread_;    // last: run() uses the other members
};

}  // namespace cef_qt
