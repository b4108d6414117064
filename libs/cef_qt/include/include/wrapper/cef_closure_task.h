// Posting of closures.
#ifndef CEF_INCLUDE_WRAPPER_CEF_CLOSURE_TASK_H_
#define CEF_INCLUDE_WRAPPER_CEF_CLOSURE_TASK_H_

#include "include/base/cef_callback.h"
#include "include/cef_task.h"

// Returns a task that runs the closure. The closure is released after the run or with the task.
CefRefPtr<CefTask> CefCreateClosureTask(base::OnceClosure closure);
CefRefPtr<CefTask> CefCreateClosureTask(const base::RepeatingClosure& closure);

// Like the functions of the same names for tasks.
bool CefPostTask(CefThreadId thread, base::OnceClosure closure);
bool CefPostTask(CefThreadId thread, const base::RepeatingClosure& closure);
bool CefPostDelayedTask(CefThreadId thread, base::OnceClosure closure, int64_t delay_ms);
bool CefPostDelayedTask(CefThreadId thread, const base::RepeatingClosure& closure,
                        int64_t delay_ms);

#endif  // CEF_INCLUDE_WRAPPER_CEF_CLOSURE_TASK_H_
