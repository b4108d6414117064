#include <QApplication>
#include <QStringList>
#include <atomic>
#include <cstdio>
#include <memory>
#include <vector>

#include "base/browser_log.h"
#include "base/command_line_impl.h"
#include "base/framework_state.h"
#include "base/options.h"
#include "base/qt_text.h"
#include "browser/browser_list.h"
#include "browser/dialog_scheme.h"
#include "browser/origin_scheme.h"
#include "browser/profile.h"
#include "browser/render_side.h"
#include "include/cef_app.h"
#include "osr/off_screen_browser_host.h"
#include "process/application.h"
#include "process/environment.h"
#include "process/instance_lock.h"
#include "threads/threads.h"
#include "threads/ui_task_runner.h"

namespace cef_qt {
namespace {

// The parts of a running framework, in the order of their creation.
struct Running {
  std::unique_ptr<InstanceLock> lock;
  std::unique_ptr<Application> application;
  std::shared_ptr<UiTaskRunner> uiTasks;
};

struct State {
  bool wasStarted = false;
  std::atomic<int> exitCode{CEF_RESULT_CODE_NORMAL_EXIT};
  std::unique_ptr<Running> running;
};

State& state() {
  static State current;
  return current;
}

bool fail() {
  state().exitCode = CEF_RESULT_CODE_FAILURE;
  return false;
}

CefRefPtr<CommandLine> commandLineOf(const CefMainArgs& args) {
  CefRefPtr<CommandLine> line = new CommandLine();
  line->InitFromArgv(args.argc, args.argv);
  return line;
}

// Lets the application add Chromium's switches and returns the added ones.
QStringList switchesAddedBy(const CefRefPtr<CefApp>& app, const CefRefPtr<CommandLine>& line) {
  std::vector<CefString> before;
  line->GetArgv(before);
  if (app) {
    app->OnBeforeCommandLineProcessing(CefString(), line);
  }
  std::vector<CefString> after;
  line->GetArgv(after);
  QStringList added;
  for (std::size_t i = before.size(); i < after.size(); ++i) {
    const QString word = toQt(after[i]);
    if (word.startsWith(QLatin1String("--"))) {
      added << word;
    }
  }
  return added;
}

void logSetUp(const Options& options, const QStringList& weakening) {
  for (const QString& name : weakening) {
    BrowserLog::instance().write(
        LOGSEVERITY_WARNING, "framework",
        name + QStringLiteral(" is set in the environment: it decides what "
                              "code runs, or who can control the pages."));
  }
  if (runsWithoutSandbox(options)) {
    BrowserLog::instance().write(LOGSEVERITY_WARNING, "framework",
                                 options.noSandbox
                                     ? QStringLiteral("Chromium runs without its sandbox, as the "
                                                      "settings ask.")
                                     : QStringLiteral("Chromium runs without its sandbox: it "
                                                      "cannot be used by root."));
  }
}

void contextInitialized() {
  const CefRefPtr<CefApp> app = FrameworkState::app();
  if (const auto handler = app ? app->GetBrowserProcessHandler() : nullptr) {
    handler->OnContextInitialized();
  }
}

void relaunched(const InstanceLock::Relaunch& relaunch) {
  const CefRefPtr<CefApp> app = FrameworkState::app();
  const auto handler = app ? app->GetBrowserProcessHandler() : nullptr;
  if (!handler) {
    return;
  }
  std::vector<const char*> argv;
  for (const std::string& word : relaunch.argv) {
    argv.push_back(word.c_str());
  }
  CefRefPtr<CommandLine> line = new CommandLine();
  line->InitFromArgv(static_cast<int>(argv.size()), argv.data());
  line->setReadOnly();
  handler->OnAlreadyRunningAppRelaunch(line, relaunch.directory);
}

// Takes the instance lock, or notifies the process that holds it. False if another process holds
// it.
bool becomeInstance(Running& running, const Options& options, const CefMainArgs& args) {
  if (options.rootCachePath.isEmpty()) {
    return true;
  }
  running.lock = std::make_unique<InstanceLock>(options.rootCachePath.toStdString());
  const InstanceLock::Outcome outcome =
      running.lock->acquire({{args.argv, args.argv + args.argc}, currentDirectory()},
                            [](const InstanceLock::Relaunch& relaunch) {
                              postTo(TID_UI, [relaunch] { relaunched(relaunch); });
                            });
  return outcome != InstanceLock::Outcome::kOtherNotified;
}

bool start(const CefMainArgs& args, const CefSettings& settings, const CefRefPtr<CefApp>& app) {
  if (state().wasStarted) {
    std::fprintf(stderr, "The browser framework can be started once in a process.\n");
    return fail();
  }
  if (requestsUnsupportedLoop(settings)) {
    return fail();
  }
  const Options options = readOptions(settings);
  auto running = std::make_unique<Running>();
  if (!becomeInstance(*running, options, args)) {
    state().exitCode = CEF_RESULT_CODE_NORMAL_EXIT_PROCESS_NOTIFIED;
    return false;
  }
  if (!hasDisplay()) {
    std::fprintf(stderr,
                 "There is no display to show windows on: neither DISPLAY nor WAYLAND_DISPLAY is "
                 "set.\n");
    return fail();
  }
  state().wasStarted = true;
  if (options.offScreen) {
    enableOffScreenBrowsers();
  }

  const QStringList weakening = weakeningVariables();
  const CefRefPtr<CommandLine> line = commandLineOf(args);
  prepareEnvironment(options, switchesAddedBy(app, line));
  line->setReadOnly();
  FrameworkState::set(app, line);
  if (app) {
    CefSchemeRegistrar registrar;
    app->OnRegisterCustomSchemes(&registrar);
  }
  DialogScheme::registerScheme();
  OriginScheme::registerScheme();
  running->application = std::make_unique<Application>(args.argc > 0 ? args.argv[0] : "");
  BrowserLog::instance().open(options.logFile, options.logSeverity);
  logSetUp(options, weakening);
  Profile::create(options);
  running->uiTasks = std::make_shared<UiTaskRunner>();
  Threads::instance().start(running->uiTasks);
  state().running = std::move(running);
  RenderSide::start();
  postTo(TID_UI, [] { contextInitialized(); });
  return true;
}

}  // namespace
}  // namespace cef_qt

bool CefInitialize(const CefMainArgs& args, const CefSettings& settings,
                   CefRefPtr<CefApp> application, void* /*windows_sandbox_info*/) {
  return cef_qt::start(args, settings, application);
}

int CefGetExitCode() {
  return cef_qt::state().exitCode;
}

void CefRunMessageLoop() {
  if (cef_qt::state().running) {
    QApplication::exec();
  }
}

void CefQuitMessageLoop() {
  if (cef_qt::state().running) {
    // quit() would ask all windows first and give up if one refused.
    QApplication::exit();
  }
}

void CefShutdown() {
  if (!cef_qt::state().running) {
    return;
  }
  cef_qt::BrowserList::instance().destroyAll();
  cef_qt::Threads::instance().stop();
  cef_qt::FrameworkState::set(nullptr, nullptr);
  cef_qt::Profile::destroy();
  cef_qt::state().running.reset();
  cef_qt::BrowserLog::instance().close();
}
