#include "threads/ui_task_runner.h"

#include <QCoreApplication>
#include <QEvent>
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

bool UiTaskRunner::post(const QueuedTask& task, int64_t delayMs) {
  const std::lock_guard lock(mutex_);
  if (stopped_) {
    return false;
  }
  queue_.push(task, delayMs);
  wakeLocked();
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
    QCoreApplication::postEvent(this, new QEvent(wakeEvent()));
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
  const auto now = DueQueue::Clock::now();
  auto task = queue_.takeReady(now);
  // Should the task run a nested loop, or the turn end after it, this event runs those behind.
  const auto next = queue_.nextDue();
  if (task && next && *next <= now) {
    wakeLocked();
  }
  return task;
}

void UiTaskRunner::runReady() {
  {
    const std::lock_guard lock(mutex_);
    woken_ = false;
  }
  // What a task posts runs in the same turn: a query and its answer take several, and should not
  // wait for other work of the loop between them. Within limits, so that this work has its share.
  const auto limit = DueQueue::Clock::now() + kLongestTurn;
  while (const auto task = takeReady()) {
    const ScopedThread current(task->thread);
    task->task->Execute();
    if (DueQueue::Clock::now() > limit) {
      break;
    }
  }
  scheduleTimer();
}

void UiTaskRunner::scheduleTimer() {
  if (timer_) {
    killTimer(timer_);
    timer_ = 0;
  }
  const std::lock_guard lock(mutex_);
  const auto due = queue_.nextDue();
  if (!due || woken_) {
    return;
  }
  using std::chrono::milliseconds;
  const auto wait = std::chrono::ceil<milliseconds>(*due - DueQueue::Clock::now()).count();
  constexpr int64_t kLongest = std::numeric_limits<int>::max();
  timer_ = startTimer(static_cast<int>(std::clamp<int64_t>(wait, 0, kLongest)), Qt::PreciseTimer);
}

}  // namespace cef_qt
