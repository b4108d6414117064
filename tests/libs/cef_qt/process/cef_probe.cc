// A small program that uses the framework, for tests of whole processes. It loads a page and ends,
// or waits.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "include/base/cef_bind.h"
#include "include/cef_app.h"
#include "include/cef_client.h"
#include "include/wrapper/cef_closure_task.h"

namespace {

CefRefPtr<CefCommandLine> commandLine;

std::string option(const char* name) {
  return commandLine->GetSwitchValue(name);
}

class Client final : public CefClient, public CefLifeSpanHandler {
 public:
  CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() override { return this; }
  void OnAfterCreated(CefRefPtr<CefBrowser> browser) override { closeOnceLoaded(browser); }
  void OnBeforeClose(CefRefPtr<CefBrowser> /*browser*/) override { CefQuitMessageLoop(); }

 private:
  void closeOnceLoaded(CefRefPtr<CefBrowser> browser) {
    started_ = started_ || browser->IsLoading();
    if (started_ && !browser->IsLoading()) {
      std::puts("loaded");
      browser->GetHost()->CloseBrowser(false);
      return;
    }
    CefPostDelayedTask(TID_UI, base::BindOnce(&Client::closeOnceLoaded, this, browser), 5);
  }

  bool started_ = false;
  IMPLEMENT_REFCOUNTING(Client);
};

class App final : public CefApp, public CefBrowserProcessHandler {
 public:
  CefRefPtr<CefBrowserProcessHandler> GetBrowserProcessHandler() override { return this; }

  void OnContextInitialized() override {
    std::puts("ready");
    std::fflush(stdout);
    const std::string url = option("url");
    if (!url.empty()) {
      CefBrowserHost::CreateBrowser(CefWindowInfo(), new Client, url, CefBrowserSettings(), nullptr,
                                    nullptr);
    } else if (!commandLine->HasSwitch("wait")) {
      CefQuitMessageLoop();
    }
  }

  bool OnAlreadyRunningAppRelaunch(CefRefPtr<CefCommandLine> line,
                                   const CefString& directory) override {
    CefCommandLine::ArgumentList arguments;
    line->GetArguments(arguments);
    std::printf("relaunch in %s: %s\n", directory.ToString().c_str(),
                arguments.empty() ? "" : arguments[0].ToString().c_str());
    std::fflush(stdout);
    return true;
  }

 private:
  IMPLEMENT_REFCOUNTING(App);
};

int released = 0;

class Waiting final : public CefTask {
 public:
  ~Waiting() override { ++released; }
  void Execute() override { std::puts("ran"); }

 private:
  IMPLEMENT_REFCOUNTING(Waiting);
};

// Leaves a task waiting on every thread and says what became of them.
int shutDownWithWaitingTasks() {
  for (int thread = TID_UI; thread <= TID_RENDERER; ++thread) {
    CefPostDelayedTask(static_cast<CefThreadId>(thread), new Waiting, 3600 * 1000);
  }
  CefShutdown();
  const bool fails = !CefPostTask(TID_UI, new Waiting) && !CefPostTask(TID_IO, new Waiting);
  std::printf("released %d of 7, posting %s\n", released - 2, fails ? "fails" : "succeeds");
  return 0;
}

void noteStart(int argc, char** argv) {
  if (const char* marker = std::getenv("CEF_PROBE_MARKER")) {
    std::ofstream file(marker, std::ios::app);
    for (int i = 1; i < argc; ++i) {
      file << argv[i] << '\n';
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  noteStart(argc, argv);
  const CefMainArgs args(argc, argv);
  const CefRefPtr<App> app(new App);
  const int code = CefExecuteProcess(args, app, nullptr);
  if (code >= 0) {
    return code;
  }
  commandLine = CefCommandLine::CreateCommandLine();
  commandLine->InitFromArgv(argc, argv);
  if (commandLine->HasSwitch("execute-only")) {
    return 77;
  }
  CefSettings settings;
  CefString(&settings.root_cache_path) = option("root");
  CefString(&settings.cache_path) = option("cache").empty() ? option("root") : option("cache");
  CefString(&settings.log_file) = option("log");
  CefString(&settings.user_agent) = option("agent");
  CefString(&settings.browser_subprocess_path) = option("subprocess");
  settings.log_severity = static_cast<cef_log_severity_t>(std::atoi(option("severity").c_str()));
  if (!CefInitialize(args, settings, app, nullptr)) {
    std::puts("not initialized");
    return CefGetExitCode();
  }
  if (commandLine->HasSwitch("shutdown")) {
    return shutDownWithWaitingTasks();
  }
  CefRunMessageLoop();
  CefShutdown();
  commandLine = nullptr;
  return 0;
}
