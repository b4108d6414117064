// The framework's named threads.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <mutex>

#include "threads/task_runner.h"

namespace cef_qt {

// Marks what runs on this thread as work of a framework thread.
class ScopedThread {
 public:
  explicit ScopedThread(CefThreadId thread);
  ~ScopedThread();
  ScopedThread(const ScopedThread&) = delete;
  ScopedThread& operator=(const ScopedThread&) = delete;

 private:
  const int previous_;
};

// TID_UI and TID_RENDERER share the UI thread and its queue, all others have a thread each, started
// with the first task. Safe to use from any thread.
class Threads {
 public:
  static Threads& instance();

  // Posting is possible from now on. The caller is the UI thread.
  void start(std::shared_ptr<TaskRunner> ui);
  // Releases all waiting tasks and ends the threads; posting fails from now on. UI thread.
  void stop();

  bool post(CefThreadId thread, const CefRefPtr<CefTask>& task, int64_t delayMs);
  bool isCurrent(CefThreadId thread) const;

 private:
  static constexpr std::size_t kCount = TID_RENDERER + 1;

  std::shared_ptr<TaskRunner> runnerFor(CefThreadId thread);

  std::mutex mutex_;
  bool running_ = false;                                     // guarded by mutex_
  std::array<std::shared_ptr<TaskRunner>, kCount> runners_;  // guarded by mutex_
};

// Posts a function; for the framework's own use.
bool postTo(CefThreadId thread, std::function<void()> work, int64_t delayMs = 0);

}  // namespace cef_qt
