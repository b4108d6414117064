#include "threads/ui_task_runner.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <algorithm>
#include <limits>
#include <thread>

#include "threads/threads.h"

namespace cef_qt {
namespace {

constexpr std::chrono::milliseconds kMaxBatchTime{5};
// A page that sends its queries one by one has its next query here within this time.
constexpr std::chrono::microseconds kPollWindow{300};

QEvent::Type runTasksEvent() {
  static const int kType = QEvent::registerEventType();
  return static_cast<QEvent::Type>(kType);
}

}  // namespace

UiTaskRunner::UiTaskRunner() : loop_(QAbstractEventDispatcher::instance()) {
  connect(loop_, &QAbstractEventDispatcher::awake, this, &UiTaskRunner::beforeEvents);
  connect(loop_, &QAbstractEventDispatcher::aboutToBlock, this, &UiTaskRunner::beforeBlocking);
}

bool UiTaskRunner::post(const QueuedTask& task, int64_t delayMs) {
  const bool onThread = QThread::currentThread() == thread();
  const std::lock_guard lock(mutex_);
  if (stopped_) {
    return false;
  }
  queue_.push(task, delayMs);
  if (!onThread || mayBlock_) {
    loop_->wakeUp();
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

void UiTaskRunner::beforeEvents() {
  mayBlock_ = false;
  runReady();
}

void UiTaskRunner::beforeBlocking() {
  mayBlock_ = false;
  runReady();
  mayBlock_ = true;
  // Waking a blocked thread takes longer than the page needs for its next query, so the loop polls.
  if (polls_ && DueQueue::Clock::now() - lastBatch_ < kPollWindow) {
    std::this_thread::yield();
    loop_->wakeUp();
  }
}

// The tasks run inside an event, so that Qt carries out their deleteLater() calls afterwards.
void UiTaskRunner::runReady() {
  ++iterations_;
  QEvent event(runTasksEvent());
  QCoreApplication::sendEvent(this, &event);
}

bool UiTaskRunner::event(QEvent* event) {
  if (event->type() == runTasksEvent()) {
    runTasks();
    return true;
  }
  if (event->type() == QEvent::Timer) {
    return true;  // the timer only wakes the loop
  }
  return QObject::event(event);
}

std::optional<QueuedTask> UiTaskRunner::takeReady() {
  const std::lock_guard lock(mutex_);
  return queue_.takeReady();
}

void UiTaskRunner::runTasks() {
  if (auto task = takeReady()) {
    const auto start = DueQueue::Clock::now();
    polls_ = start - lastBatch_ < kPollWindow;
    runBatch(std::move(*task), start + kMaxBatchTime);
    lastBatch_ = DueQueue::Clock::now();
  }
  updateTimer();
}

void UiTaskRunner::runBatch(QueuedTask first, DueQueue::Clock::time_point limit) {
  const int iteration = iterations_;
  for (std::optional task(std::move(first)); task; task = takeReady()) {
    const ScopedThread current(task->thread);
    task->task->Execute();
    // Events get their share of the loop. A nested loop may also have consumed the wake-up that
    // belonged to this loop's events.
    if (iterations_ != iteration || DueQueue::Clock::now() > limit) {
      loop_->wakeUp();
      return;
    }
  }
}

void UiTaskRunner::updateTimer() {
  using std::chrono::milliseconds;
  std::optional<DueQueue::Clock::time_point> due;
  {
    const std::lock_guard lock(mutex_);
    due = queue_.nextDue();
  }
  if (timer_ && due && *due == timerDue_) {
    return;
  }
  if (timer_) {
    killTimer(std::exchange(timer_, 0));
  }
  const auto now = DueQueue::Clock::now();
  if (!due) {
    return;
  }
  if (*due <= now) {
    loop_->wakeUp();
    return;
  }
  const auto wait = std::chrono::ceil<milliseconds>(*due - now).count();
  constexpr int64_t kMaxMs = std::numeric_limits<int>::max();
  timer_ = startTimer(static_cast<int>(std::min(wait, kMaxMs)), Qt::PreciseTimer);
  timerDue_ = *due;
}

}  // namespace cef_qt
