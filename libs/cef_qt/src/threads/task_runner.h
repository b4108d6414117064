// The queue and the thread behind a thread id.
#pragma once

#include "threads/due_queue.h"

namespace cef_qt {

class TaskRunner {
 public:
  virtual ~TaskRunner() = default;

  // Any thread. False once stopped.
  virtual bool post(const QueuedTask& task, int64_t delayMs) = 0;

  // No further task starts. Queued tasks are released on the calling thread.
  virtual void stop() = 0;

  // Waits until the running task has ended. Not to be called on the runner's own thread.
  virtual void join() = 0;
};

}  // namespace cef_qt
