#include "src/fakes/fake_framework.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "include/cef_app.h"
#include "include/wrapper/cef_closure_task.h"

namespace zantrio::test {
namespace {

FakeFramework* framework = nullptr;

class ClosureTask : public CefTask {
 public:
  explicit ClosureTask(base::OnceClosure closure) : closure_(std::move(closure)) {}
  void Execute() override { std::move(closure_).Run(); }

 private:
  base::OnceClosure closure_;

  IMPLEMENT_REFCOUNTING(ClosureTask);
};

}  // namespace

FakeFramework::FakeFramework() {
  framework = this;
}

FakeFramework::~FakeFramework() {
  dropTasks();
  framework = nullptr;
}

FakeFramework* FakeFramework::current() {
  return framework;
}

bool FakeFramework::post(CefThreadId /*thread*/, CefRefPtr<CefTask> task, std::int64_t delay) {
  const std::lock_guard lock(mutex_);
  tasks_.push_back({now_ + delay, nextNumber_++, std::move(task)});
  posted_.notify_all();
  return true;
}

CefRefPtr<CefTask> FakeFramework::takeDueTask() {
  const std::lock_guard lock(mutex_);
  const auto first = std::min_element(tasks_.begin(), tasks_.end(), [](auto& a, auto& b) {
    return std::tie(a.due, a.number) < std::tie(b.due, b.number);
  });
  if (first == tasks_.end() || first->due > now_) {
    return nullptr;
  }
  CefRefPtr<CefTask> task = first->task;
  tasks_.erase(first);
  return task;
}

void FakeFramework::runDueTasks() {
  while (CefRefPtr<CefTask> task = takeDueTask()) {
    task->Execute();
  }
}

void FakeFramework::advance(std::int64_t milliseconds) {
  for (std::int64_t passed = 0; passed < milliseconds; ++passed) {
    runDueTasks();
    const std::lock_guard lock(mutex_);
    ++now_;
  }
  runDueTasks();
}

bool FakeFramework::waitForTask() {
  std::unique_lock lock(mutex_);
  return posted_.wait_for(lock, std::chrono::seconds(30), [this] { return !tasks_.empty(); });
}

std::size_t FakeFramework::pendingTasks() {
  const std::lock_guard lock(mutex_);
  return tasks_.size();
}

void FakeFramework::dropTasks() {
  std::vector<Task> dropped;
  {
    const std::lock_guard lock(mutex_);
    dropped.swap(tasks_);
  }
}

CefRefPtr<CefMessageRouterBrowserSide> FakeFramework::createRouter(
    const CefMessageRouterConfig& config) {
  if (config.js_query_function == CefString(failingRouter_)) {
    return nullptr;
  }
  routers_.push_back(new FakeRouter(config));
  return routers_.back();
}

bool FakeRouter::AddHandler(Handler* handler, bool first) {
  handlers.push_back(handler);
  addedFirst = addedFirst || first;
  return true;
}

}  // namespace zantrio::test

using zantrio::test::FakeFramework;

bool CefCurrentlyOn(CefThreadId thread) {
  // Tests without this framework run on one thread.
  return thread == TID_UI &&
         (FakeFramework::current() == nullptr || FakeFramework::current()->onUiThread());
}

bool CefPostTask(CefThreadId thread, CefRefPtr<CefTask> task) {
  return FakeFramework::current()->post(thread, std::move(task), 0);
}

bool CefPostDelayedTask(CefThreadId thread, CefRefPtr<CefTask> task, int64_t delay_ms) {
  return FakeFramework::current()->post(thread, std::move(task), delay_ms);
}

CefRefPtr<CefTask> CefCreateClosureTask(base::OnceClosure closure) {
  return new zantrio::test::ClosureTask(std::move(closure));
}

bool CefPostTask(CefThreadId thread, base::OnceClosure closure) {
  return CefPostTask(thread, CefCreateClosureTask(std::move(closure)));
}

bool CefPostDelayedTask(CefThreadId thread, base::OnceClosure closure, int64_t delay_ms) {
  return CefPostDelayedTask(thread, CefCreateClosureTask(std::move(closure)), delay_ms);
}

void CefQuitMessageLoop() {
  FakeFramework::current()->quit();
}

CefMessageRouterConfig::CefMessageRouterConfig()
    : js_query_function("cefQuery"), js_cancel_function("cefQueryCancel") {}

CefRefPtr<CefMessageRouterBrowserSide> CefMessageRouterBrowserSide::Create(
    const CefMessageRouterConfig& config) {
  return FakeFramework::current()->createRouter(config);
}
