// The framework's named threads.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <mutex>

#include "threads/task_runner.h"

namespace cef_qt {

// While it lives, CefCurrentlyOn reports this thread id on the calling thread.
class ScopedThread {
 public:
  explicit ScopedThread(CefThreadId thread);
  ~ScopedThread();
  ScopedThread(const ScopedThread&) = delete;
  ScopedThread& operator=(const ScopedThread&) = delete;

 private:
  const int previous_;
};

// TID_UI and TID_RENDERER share the UI thread and its queue. Every other id has a thread of its own
// that starts with the first task. Thread-safe.
class Threads {
 public:
  static Threads& instance();

  // Allows posting. The calling thread becomes the UI thread.
  void start(std::shared_ptr<TaskRunner> ui);
  // Releases all queued tasks, joins the threads and lets posting fail. UI thread.
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

// Posts a function. False once the framework is shut down.
bool postTo(CefThreadId thread, std::function<void()> work, int64_t delayMs = 0);

}  // namespace cef_qt
