#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "include/cef_task.h"
#include "include/wrapper/cef_message_router.h"

namespace zantrio::test {

class FakeRouter;

// Replaces the framework's tasks, message loop and routers; tests advance its clock. The thread
// that creates it is the UI thread. Linked instead of the framework's implementation.
class FakeFramework {
 public:
  FakeFramework();
  ~FakeFramework();

  static FakeFramework* current();

  // Runs all due tasks in order.
  void runDueTasks();
  // Advances the clock and runs the tasks that become due.
  void advance(std::int64_t milliseconds);
  // Waits until another thread has posted a task. False after a generous limit.
  bool waitForTask();
  std::size_t pendingTasks();
  // Releases the tasks that have not run.
  void dropTasks();

  int quitCalls() const { return quitCalls_; }
  const std::vector<CefRefPtr<FakeRouter>>& routers() const { return routers_; }
  // The next routers for this query function cannot be made.
  void failRouterFor(const std::string& queryFunction) { failingRouter_ = queryFunction; }

  // Called by the framework's functions.
  bool post(CefThreadId thread, CefRefPtr<CefTask> task, std::int64_t delay);
  bool onUiThread() const { return std::this_thread::get_id() == uiThread_; }
  void quit() { ++quitCalls_; }
  CefRefPtr<CefMessageRouterBrowserSide> createRouter(const CefMessageRouterConfig& config);

 private:
  struct Task {
    std::int64_t due;
    std::uint64_t number;
    CefRefPtr<CefTask> task;
  };

  CefRefPtr<CefTask> takeDueTask();

  const std::thread::id uiThread_ = std::this_thread::get_id();
  int quitCalls_ = 0;
  std::string failingRouter_;
  std::vector<CefRefPtr<FakeRouter>> routers_;

  std::mutex mutex_;
  std::condition_variable posted_;
  // Guarded by mutex_.
  std::int64_t now_ = 0;
  std::uint64_t nextNumber_ = 0;
  std::vector<Task> tasks_;
};

// A browser-side router that counts its calls.
class FakeRouter : public CefMessageRouterBrowserSide {
 public:
  explicit FakeRouter(const CefMessageRouterConfig& config) : config_(config) {}

  bool AddHandler(Handler* handler, bool first) override;
  bool RemoveHandler(Handler* handler) override { return std::erase(handlers, handler) > 0; }
  void CancelPending(CefRefPtr<CefBrowser> /*browser*/, Handler* /*handler*/) override {}
  int GetPendingCount(CefRefPtr<CefBrowser> /*browser*/, Handler* /*handler*/) override {
    return 0;
  }
  void OnBeforeClose(CefRefPtr<CefBrowser> /*browser*/) override { ++closed; }
  void OnRenderProcessTerminated(CefRefPtr<CefBrowser> /*browser*/) override { ++terminated; }
  void OnBeforeBrowse(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/) override {
    ++browsed;
  }
  bool OnProcessMessageReceived(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                                CefProcessId /*source*/,
                                CefRefPtr<CefProcessMessage> /*message*/) override {
    ++messages;
    return handlesMessages;
  }

  const CefMessageRouterConfig& config() const { return config_; }

  std::vector<Handler*> handlers;
  bool addedFirst = false;
  int closed = 0;
  int terminated = 0;
  int browsed = 0;
  int messages = 0;
  bool handlesMessages = false;

 private:
  const CefMessageRouterConfig config_;
};

}  // namespace zantrio::test
