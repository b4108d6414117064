#include "threads/worker_thread.h"

#include "threads/threads.h"

namespace cef_qt {

WorkerThread::WorkerThread() : thread_([this] { run(); }) {}

WorkerThread::~WorkerThread() {
  stop();
  join();
}

bool WorkerThread::post(const QueuedTask& task, int64_t delayMs) {
  const std::lock_guard lock(mutex_);
  if (stopped_) {
    return false;
  }
  queue_.push(task, delayMs);
  changed_.notify_one();
  return true;
}

void WorkerThread::stop() {
  std::vector<QueuedTask> dropped;
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    dropped = queue_.takeAll();
    changed_.notify_one();
  }
}

void WorkerThread::join() {
  if (thread_.joinable()) {
    thread_.join();
  }
}

std::optional<QueuedTask> WorkerThread::waitForTask() {
  std::unique_lock lock(mutex_);
  while (!stopped_) {
    if (auto task = queue_.takeReady()) {
      return task;
    }
    if (const auto due = queue_.nextDue()) {
      changed_.wait_until(lock, *due);
    } else {
      changed_.wait(lock);
    }
  }
  return std::nullopt;
}

void WorkerThread::run() {
  while (const auto task = waitForTask()) {
    const ScopedThread current(task->thread);
    task->task->Execute();
  }
}

}  // namespace cef_qt
