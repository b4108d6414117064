#include "threads/threads.h"

#include "include/wrapper/cef_closure_task.h"
#include "threads/worker_thread.h"

namespace cef_qt {
namespace {

constexpr int kNoThread = -1;
thread_local int currentThread = kNoThread;

class FunctionTask final : public CefTask {
 public:
  explicit FunctionTask(std::function<void()> work) : work_(std::move(work)) {}
  void Execute() override { work_(); }

 private:
  std::function<void()> work_;
  IMPLEMENT_REFCOUNTING(FunctionTask);
};

class OnceClosureTask final : public CefTask {
 public:
  explicit OnceClosureTask(base::OnceClosure closure) : closure_(std::move(closure)) {}
  void Execute() override { std::move(closure_).Run(); }

 private:
  base::OnceClosure closure_;
  IMPLEMENT_REFCOUNTING(OnceClosureTask);
};

}  // namespace

ScopedThread::ScopedThread(CefThreadId thread) : previous_(currentThread) {
  currentThread = thread;
}

ScopedThread::~ScopedThread() {
  currentThread = previous_;
}

Threads& Threads::instance() {
  static Threads threads;
  return threads;
}

void Threads::start(std::shared_ptr<TaskRunner> ui) {
  currentThread = TID_UI;
  const std::lock_guard lock(mutex_);
  running_ = true;
  runners_[TID_UI] = ui;
  runners_[TID_RENDERER] = std::move(ui);
}

void Threads::stop() {
  std::array<std::shared_ptr<TaskRunner>, kCount> runners;
  {
    const std::lock_guard lock(mutex_);
    running_ = false;
    runners.swap(runners_);
  }
  // All runners stop before the first join: a running task may wait for a queued task of another
  // thread, which stop() releases.
  for (const auto& runner : runners) {
    if (runner) {
      runner->stop();
    }
  }
  for (const auto& runner : runners) {
    if (runner) {
      runner->join();
    }
  }
}

std::shared_ptr<TaskRunner> Threads::runnerFor(CefThreadId thread) {
  const std::lock_guard lock(mutex_);
  if (!running_ || thread < TID_UI || thread > TID_RENDERER) {
    return nullptr;
  }
  auto& runner = runners_[static_cast<std::size_t>(thread)];
  if (!runner) {
    runner = std::make_shared<WorkerThread>();
  }
  return runner;
}

bool Threads::post(CefThreadId thread, const CefRefPtr<CefTask>& task, int64_t delayMs) {
  const auto runner = task ? runnerFor(thread) : nullptr;
  return runner && runner->post({thread, task}, delayMs);
}

bool Threads::isCurrent(CefThreadId thread) const {
  // Work of the render side runs on the UI thread.
  return currentThread == thread || (thread == TID_UI && currentThread == TID_RENDERER);
}

bool postTo(CefThreadId thread, std::function<void()> work, int64_t delayMs) {
  return Threads::instance().post(thread, new FunctionTask(std::move(work)), delayMs);
}

}  // namespace cef_qt

using cef_qt::Threads;

bool CefCurrentlyOn(CefThreadId thread) {
  return Threads::instance().isCurrent(thread);
}

bool CefPostTask(CefThreadId thread, CefRefPtr<CefTask> task) {
  return Threads::instance().post(thread, task, 0);
}

bool CefPostDelayedTask(CefThreadId thread, CefRefPtr<CefTask> task, int64_t delay_ms) {
  return Threads::instance().post(thread, task, delay_ms);
}

CefRefPtr<CefTask> CefCreateClosureTask(base::OnceClosure closure) {
  return new cef_qt::OnceClosureTask(std::move(closure));
}

CefRefPtr<CefTask> CefCreateClosureTask(const base::RepeatingClosure& closure) {
  return CefCreateClosureTask(base::OnceClosure(closure));
}

bool CefPostTask(CefThreadId thread, base::OnceClosure closure) {
  return CefPostTask(thread, CefCreateClosureTask(std::move(closure)));
}

bool CefPostTask(CefThreadId thread, const base::RepeatingClosure& closure) {
  return CefPostTask(thread, CefCreateClosureTask(closure));
}

bool CefPostDelayedTask(CefThreadId thread, base::OnceClosure closure, int64_t delay_ms) {
  return CefPostDelayedTask(thread, CefCreateClosureTask(std::move(closure)), delay_ms);
}

bool CefPostDelayedTask(CefThreadId thread, const base::RepeatingClosure& closure,
                        int64_t delay_ms) {
  return CefPostDelayedTask(thread, CefCreateClosureTask(closure), delay_ms);
}
