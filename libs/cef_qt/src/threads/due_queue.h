// The tasks of one thread, ordered by due time.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <queue>
#include <vector>

#include "include/cef_task.h"

namespace cef_qt {

// A task and its thread. A queue can hold tasks of two threads, since the render side shares the
// queue of the UI thread.
struct QueuedTask {
  CefThreadId thread;
  CefRefPtr<CefTask> task;
};

// Tasks without a delay run in posting order, delayed tasks by due time. Between the two kinds the
// task that was due first runs first. Not thread-safe; the owner locks.
class DueQueue {
 public:
  using Clock = std::chrono::steady_clock;

  void push(QueuedTask task, int64_t delayMs);
  // The next task if it is due; nullopt otherwise.
  std::optional<QueuedTask> takeReady();
  // The due time of the next task; nullopt when the queue is empty.
  std::optional<Clock::time_point> nextDue() const;
  // Empties the queue.
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
