#include "threads/ui_task_runner.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <algorithm>
#include <limits>

#include "threads/threads.h"

namespace cef_qt {
namespace {

constexpr std::chrono::milliseconds kLongestTurn{5};

QEvent::Type wakeEvent() {
  static const int kType = QEvent::registerEventType();
  return static_cast<QEvent::Type>(kType);
}

}  // namespace

UiTaskRunner::UiTaskRunner() {
  const QAbstractEventDispatcher* loop = QAbstractEventDispatcher::instance();
  connect(loop, &QAbstractEventDispatcher::awake, this, &UiTaskRunner::serveNestedLoop);
  connect(loop, &QAbstractEventDispatcher::aboutToBlock, this, &UiTaskRunner::serveNestedLoop);
}

bool UiTaskRunner::post(const QueuedTask& task, int64_t delayMs) {
  const std::lock_guard lock(mutex_);
  if (stopped_) {
    return false;
  }
  queue_.push(task, delayMs);
  // What a task posts is run in the turn of that task.
  if (QThread::currentThread() != thread() || running_ == 0) {
    wakeLocked();
  }
  return true;
}

void UiTaskRunner::stop() {
  std::vector<QueuedTask> dropped;
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    dropped = queue_.takeAll();
  }
}

void UiTaskRunner::wakeLocked() {
  if (!woken_) {
    woken_ = true;
    QCoreApplication::postEvent(this, new QEvent(wakeEvent()), Qt::HighEventPriority);
  }
}

bool UiTaskRunner::event(QEvent* event) {
  if (event->type() == wakeEvent() || event->type() == QEvent::Timer) {
    runReady();
    return true;
  }
  return QObject::event(event);
}

std::optional<QueuedTask> UiTaskRunner::takeReady() {
  const std::lock_guard lock(mutex_);
  return queue_.takeReady(DueQueue::Clock::now());
}

void UiTaskRunner::serveNestedLoop() {
  if (running_ == 0) {
    return;
  }
  const std::lock_guard lock(mutex_);
  const auto due = queue_.nextDue();
  if (due && *due <= DueQueue::Clock::now()) {
    wakeLocked();
  } else if (due && (!timer_ || *due < timerDue_)) {
    startTimerLocked(*due);
  }
}

void UiTaskRunner::runReady() {
  {
    const std::lock_guard lock(mutex_);
    woken_ = false;
  }
  // A query and its answer take several tasks, which should not wait for other work of the loop
  // between them. Within limits, so that this work has its share.
  const auto limit = DueQueue::Clock::now() + kLongestTurn;
  ++running_;
  while (const auto task = takeReady()) {
    const ScopedThread current(task->thread);
    task->task->Execute();
    if (DueQueue::Clock::now() > limit) {
      break;
    }
  }
  --running_;
  scheduleTimer();
}

void UiTaskRunner::scheduleTimer() {
  const std::lock_guard lock(mutex_);
  const auto due = queue_.nextDue();
  if (due && !woken_) {
    startTimerLocked(*due);
  } else {
    stopTimer();
  }
}

void UiTaskRunner::startTimerLocked(DueQueue::Clock::time_point due) {
  using std::chrono::milliseconds;
  stopTimer();
  const auto wait = std::chrono::ceil<milliseconds>(due - DueQueue::Clock::now()).count();
  constexpr int64_t kLongest = std::numeric_limits<int>::max();
  timer_ = startTimer(static_cast<int>(std::clamp<int64_t>(wait, 0, kLongest)), Qt::PreciseTimer);
  timerDue_ = due;
}

void UiTaskRunner::stopTimer() {
  if (timer_) {
    killTimer(std::exchange(timer_, 0));
  }
}

}  // namespace cef_qt
