// Tasks of the UI thread, run from Qt's event loop.
#pragma once

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QPointer>
#include <mutex>

#include "threads/task_runner.h"

namespace cef_qt {

// Lives on the thread of the QApplication. Tasks run at two points of every round of its event
// loop, before it takes events and before it waits: there no callback of Chromium is under way, and
// a task posted by the loop's own thread needs nothing to wake the loop. A task that runs a nested
// event loop (a modal dialog) does not hold back those behind it: the nested loop has the same
// points.
class UiTaskRunner final : public QObject, public TaskRunner {
 public:
  UiTaskRunner();

  bool post(const QueuedTask& task, int64_t delayMs) override;
  void stop() override;
  void join() override {}

  bool event(QEvent* event) override;

 private:
  void beforeEvents();
  void beforeWaiting();
  void runReady();
  void runTasks();
  void runTurn(QueuedTask first, DueQueue::Clock::time_point limit);
  std::optional<QueuedTask> takeReady();
  void keepTimer();

  QAbstractEventDispatcher* const loop_;
  std::mutex mutex_;
  DueQueue queue_;        // guarded by mutex_
  bool stopped_ = false;  // guarded by mutex_

  // UI thread.
  bool mayWait_ = false;         // the loop has passed its last point before it waits
  int rounds_ = 0;               // how often a loop has come by, to see whether a task ran one
  bool inConversation_ = false;  // the last turn followed closely on the one before
  DueQueue::Clock::time_point lastTurn_;
  int timer_ = 0;  // for the next delayed task; 0: none
  DueQueue::Clock::time_point timerDue_;
};

}  // namespace cef_qt
