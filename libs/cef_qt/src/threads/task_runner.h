// Where posted tasks wait and run.
#pragma once

#include "threads/due_queue.h"

namespace cef_qt {

class TaskRunner {
 public:
  virtual ~TaskRunner() = default;

  // From any thread; false once stopped, the task is then released by the caller.
  virtual bool post(const QueuedTask& task, int64_t delayMs) = 0;

  // No further task begins; those that wait are released on the calling thread.
  virtual void stop() = 0;

  // Waits for a task that runs. Not on the runner's own thread.
  virtual void join() = 0;
};

}  // namespace cef_qt
