// Work posted to the framework's threads.
#ifndef CEF_INCLUDE_CEF_TASK_H_
#define CEF_INCLUDE_CEF_TASK_H_

#include <cstdint>

#include "include/cef_base.h"

using CefThreadId = cef_thread_id_t;

class CefTask : public virtual CefBaseRefCounted {
 public:
  // Runs once, on the thread it was posted to.
  virtual void Execute() = 0;
};

// Whether the caller runs on the given framework thread.
bool CefCurrentlyOn(CefThreadId thread);

// Posts a task; callable from any thread. Tasks of one thread run in posting order. False, with the
// task dropped, when the framework is not running (before its start, after its shutdown).
bool CefPostTask(CefThreadId thread, CefRefPtr<CefTask> task);

// As CefPostTask, after at least `delay_ms` milliseconds, by due time. A task that is not due
// before the shutdown is released without running.
bool CefPostDelayedTask(CefThreadId thread, CefRefPtr<CefTask> task, int64_t delay_ms);

#endif  // CEF_INCLUDE_CEF_TASK_H_
