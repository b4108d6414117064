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

constexpr std::chrono::milliseconds kLongestTurn{5};
// How soon a page that asks one thing after the other has its next question here.
constexpr std::chrono::microseconds kNextQuestion{300};

QEvent::Type turnEvent() {
  static const int kType = QEvent::registerEventType();
  return static_cast<QEvent::Type>(kType);
}

}  // namespace

UiTaskRunner::UiTaskRunner() : loop_(QAbstractEventDispatcher::instance()) {
  connect(loop_, &QAbstractEventDispatcher::awake, this, &UiTaskRunner::beforeEvents);
  connect(loop_, &QAbstractEventDispatcher::aboutToBlock, this, &UiTaskRunner::beforeWaiting);
}

bool UiTaskRunner::post(const QueuedTask& task, int64_t delayMs) {
  const bool onThread = QThread::currentThread() == thread();
  const std::lock_guard lock(mutex_);
  if (stopped_) {
    return false;
  }
  queue_.push(task, delayMs);
  if (!onThread || mayWait_) {
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
  mayWait_ = false;
  runReady();
}

void UiTaskRunner::beforeWaiting() {
  mayWait_ = false;
  runReady();
  mayWait_ = true;
  // Waking a thread that waits takes longer than a page takes for its next question.
  if (inConversation_ && DueQueue::Clock::now() - lastTurn_ < kNextQuestion) {
    std::this_thread::yield();
    loop_->wakeUp();
  }
}

// As an event, so that what tasks delete later is deleted once they are done.
void UiTaskRunner::runReady() {
  ++rounds_;
  QEvent turn(turnEvent());
  QCoreApplication::sendEvent(this, &turn);
}

bool UiTaskRunner::event(QEvent* event) {
  if (event->type() == turnEvent()) {
    runTasks();
    return true;
  }
  if (event->type() == QEvent::Timer) {
    return true;  // the loop is awake, that is all it is for
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
    inConversation_ = start - lastTurn_ < kNextQuestion;
    runTurn(std::move(*task), start + kLongestTurn);
    lastTurn_ = DueQueue::Clock::now();
  }
  keepTimer();
}

void UiTaskRunner::runTurn(QueuedTask first, DueQueue::Clock::time_point limit) {
  const int round = rounds_;
  for (std::optional task(std::move(first)); task; task = takeReady()) {
    const ScopedThread current(task->thread);
    task->task->Execute();
    // Other work of the loop has its share; and a loop that a task ran may have taken the wake-up
    // of this one's events.
    if (rounds_ != round || DueQueue::Clock::now() > limit) {
      loop_->wakeUp();
      return;
    }
  }
}

void UiTaskRunner::keepTimer() {
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
  constexpr int64_t kLongest = std::numeric_limits<int>::max();
  timer_ = startTimer(static_cast<int>(std::min(wait, kLongest)), Qt::PreciseTimer);
  timerDue_ = *due;
}

}  // namespace cef_qt
