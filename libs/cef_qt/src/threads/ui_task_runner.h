// Runs the tasks of the UI thread in Qt's event loop.
#pragma once

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QPointer>
#include <mutex>

#include "threads/task_runner.h"

namespace cef_qt {

// Lives on the thread of the QApplication. Tasks run at two points of every iteration of the event
// loop, before events are processed and before the loop blocks. No callback of Chromium is on the
// stack there, and a task posted by the UI thread itself needs no wake-up. A task may run a nested
// event loop (a modal dialog): the nested loop has the same two points and runs the tasks queued
// behind it.
class UiTaskRunner final : public QObject, public TaskRunner {
 public:
  UiTaskRunner();

  bool post(const QueuedTask& task, int64_t delayMs) override;
  void stop() override;
  void join() override {}

  bool event(QEvent* event) override;

 private:
  void beforeEvents();
  void beforeBlocking();
  void runReady();
  void runTasks();
  void runBatch(QueuedTask first, DueQueue::Clock::time_point limit);
  std::optional<QueuedTask> takeReady();
  void updateTimer();

  QAbstractEventDispatcher* const loop_;
  std::mutex mutex_;
  DueQueue queue_;        // guarded by mutex_
  bool stopped_ = false;  // guarded by mutex_

  // UI thread.
  bool mayBlock_ = false;  // the loop is past its last point before it blocks
  int iterations_ = 0;     // of all loops; a change during a task shows that it ran a nested loop
  bool polls_ = false;     // the latest batch followed within the poll window
  DueQueue::Clock::time_point lastBatch_;
  int timer_ = 0;  // of the next delayed task; 0 for none
  DueQueue::Clock::time_point timerDue_;
};

}  // namespace cef_qt
