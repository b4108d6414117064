// Tasks of the UI thread, run from Qt's event loop.
#pragma once

#include <QObject>
#include <mutex>

#include "threads/task_runner.h"

namespace cef_qt {

// Lives on the thread of the QApplication. Every task is run from an event of its own level: a task
// that runs a nested event loop (a modal dialog) does not hold back those behind it.
class UiTaskRunner final : public QObject, public TaskRunner {
 public:
  UiTaskRunner();

  bool post(const QueuedTask& task, int64_t delayMs) override;
  void stop() override;
  void join() override {}

  bool event(QEvent* event) override;

 private:
  void runReady();
  std::optional<QueuedTask> takeReady();
  // A loop that a task runs is about to look for events, or to wait for them.
  void serveNestedLoop();
  void wakeLocked();
  void scheduleTimer();
  void startTimerLocked(DueQueue::Clock::time_point due);
  void stopTimer();

  std::mutex mutex_;
  DueQueue queue_;        // guarded by mutex_
  bool woken_ = false;    // guarded by mutex_: an event is under way
  bool stopped_ = false;  // guarded by mutex_
  int timer_ = 0;         // UI thread; 0: none
  DueQueue::Clock::time_point timerDue_;
  int running_ = 0;  // UI thread: turns that are under way, one inside the other
};

}  // namespace cef_qt
