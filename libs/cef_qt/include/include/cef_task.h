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

// Whether the calling thread is the given framework thread.
bool CefCurrentlyOn(CefThreadId thread);

// Posts a task. Any thread. Tasks of one thread run in posting order. False, and the task is
// released, before CefInitialize and after CefShutdown.
bool CefPostTask(CefThreadId thread, CefRefPtr<CefTask> task);

// Like CefPostTask, but the task runs after at least `delay_ms` milliseconds. Delayed tasks run by
// due time. Tasks that are not due before the shutdown are released without running.
bool CefPostDelayedTask(CefThreadId thread, CefRefPtr<CefTask> task, int64_t delay_ms);

#endif  // CEF_INCLUDE_CEF_TASK_H_
