// Tasks of one thread, ordered by the time they may run.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <queue>
#include <vector>

#include "include/cef_task.h"

namespace cef_qt {

// Which of the framework's threads a task belongs to, and the task. The render side shares the UI
// thread's queue, so a queue can hold tasks of more than one.
struct QueuedTask {
  CefThreadId thread;
  CefRefPtr<CefTask> task;
};

// Tasks without a delay come in posting order, the others by due time; between the two, whichever
// was due first. Not locked: the owner does that.
class DueQueue {
 public:
  using Clock = std::chrono::steady_clock;

  void push(QueuedTask task, int64_t delayMs);
  // The next task that may run now.
  std::optional<QueuedTask> takeReady();
  // When the next task may run; nothing when there is none.
  std::optional<Clock::time_point> nextDue() const;
  // All tasks, for their release.
  std::vector<QueuedTask> takeAll();

 private:
  struct Entry {
    Clock::time_point due;
    uint64_t sequence;
    QueuedTask task;
  };
  struct Later {
    bool operator()(const Entry& a, const Entry& b) const {
      return a.due != b.due ? a.due > b.due : a.sequence > b.sequence;
    }
  };

  bool delayedIsNext() const;
  QueuedTask takeDelayed();

  std::deque<Entry> immediate_;
  std::vector<Entry> delayed_;  // a heap ordered by Later
  uint64_t sequence_ = 0;
};

}  // namespace cef_qt
