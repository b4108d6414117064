#include "support/framework.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "include/base/cef_bind.h"
#include "include/wrapper/cef_closure_task.h"
#include "include/wrapper/cef_message_router.h"

namespace cef_test {
namespace {

int contexts = 0;

class TestApp final : public CefApp,
                      public CefBrowserProcessHandler,
                      public CefRenderProcessHandler {
 public:
  explicit TestApp(std::function<void()> onContextInitialized)
      : onContextInitialized_(std::move(onContextInitialized)) {}

  CefRefPtr<CefBrowserProcessHandler> GetBrowserProcessHandler() override { return this; }
  CefRefPtr<CefRenderProcessHandler> GetRenderProcessHandler() override { return this; }

  void OnContextInitialized() override {
    if (onContextInitialized_) {
      onContextInitialized_();
    }
  }
  void OnWebKitInitialized() override {
    for (const char* name : {kQuery, kOtherQuery}) {
      CefMessageRouterConfig config;
      config.js_query_function = name;
      routers_.push_back(CefMessageRouterRendererSide::Create(config));
    }
  }
  void OnContextCreated(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                        CefRefPtr<CefV8Context> context) override {
    EXPECT_TRUE(CefCurrentlyOn(TID_RENDERER));
    ++contexts;
    for (const auto& router : routers_) {
      router->OnContextCreated(browser, frame, context);
    }
  }
  void OnContextReleased(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                         CefRefPtr<CefV8Context> context) override {
    EXPECT_TRUE(CefCurrentlyOn(TID_RENDERER));
    --contexts;
    for (const auto& router : routers_) {
      router->OnContextReleased(browser, frame, context);
    }
  }
  bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefProcessId source,
                                CefRefPtr<CefProcessMessage> message) override {
    bool handled = false;
    for (const auto& router : routers_) {
      handled = router->OnProcessMessageReceived(browser, frame, source, message) || handled;
    }
    return handled;
  }

 private:
  const std::function<void()> onContextInitialized_;
  std::vector<CefRefPtr<CefMessageRouterRendererSide>> routers_;
  IMPLEMENT_REFCOUNTING(TestApp);
};

struct Folder {
  Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "cef_qt_test_XXXXXX").string();
    path = mkdtemp(pattern.data());
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  std::string path;
};

struct Wait {
  std::function<bool()> condition;
  std::chrono::steady_clock::time_point deadline;
  bool met = false;
};

void check(Wait* wait) {
  wait->met = wait->condition();
  if (wait->met || std::chrono::steady_clock::now() > wait->deadline) {
    CefQuitMessageLoop();
    return;
  }
  CefPostDelayedTask(TID_UI, base::BindOnce(&check, wait), 2);
}

}  // namespace

CefRefPtr<CefApp> makeApp(std::function<void()> onContextInitialized) {
  return new TestApp(std::move(onContextInitialized));
}

int liveContexts() {
  return contexts;
}

bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout) {
  Wait wait{condition, std::chrono::steady_clock::now() + timeout};
  CefPostTask(TID_UI, base::BindOnce(&check, &wait));
  CefRunMessageLoop();
  return wait.met;
}

void runQueued() {
  runUntil([] { return true; });
}

std::string temporaryFolder() {
  static const Folder kFolder;
  return kFolder.path;
}

std::string writePage(const std::string& name, const std::string& html) {
  const std::string path = temporaryFolder() + "/" + name;
  std::ofstream(path) << "<!DOCTYPE html><meta charset=utf-8>" << html;
  return "file://" + path;
}

void prepareHeadless() {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  setenv("XDG_RUNTIME_DIR", temporaryFolder().c_str(), 1);
}

}  // namespace cef_test
