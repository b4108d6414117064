#include "app/browser_process.h"

#include <filesystem>
#include <iostream>

#include "app/data_folder.h"
#include "app/framework_settings.h"
#include "app/log/logger.h"
#include "app/open_files.h"
#include "app/settings/executable_path.h"
#include "app/shutdown_signals.h"
#include "browser/initial_files_container.h"
#include "browser/zt_cef_handler.h"
#include "include/base/cef_bind.h"
#include "include/base/cef_callback.h"
#include "include/wrapper/cef_closure_task.h"
#include "services/crash/crash_report_folder.h"
#include "shown_text/one_line.h"

namespace zantrio {
namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kUsageError = 2;

constexpr const char* kHelp =
    "Usage: zantrio [FILE...]\n"
    "Opens the Zantrio window. Files and folders that are named are offered for sending; when\n"
    "Zantrio runs already, they are handed to the running one.\n"
    "\n"
    "  --off-screen-rendering  shows the page in an OpenGL view of Zantrio's own instead of a\n"
    "                          browser window\n"
    "  --help                  shows this text\n"
    "  --version               shows the version\n";

void report(const std::string& text) {
  std::cerr << "zantrio: " << text << std::endl;
  logError(text);
}

void reportMissing(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    std::error_code error;
    if (!std::filesystem::exists(std::filesystem::symlink_status(name, error))) {
      std::cerr << "zantrio: '" << shown_text::oneLine(name) << "': there is no such file"
                << std::endl;
    }
  }
}

void closeApplication(bool force) {
  ZtCefHandler* const client = ZtCefHandler::instance();
  if (client != nullptr && client->hasBrowsers()) {
    client->CloseAllBrowsers(force);
  } else {
    CefQuitMessageLoop();
  }
}

}  // namespace

BrowserProcess::BrowserProcess(int argc, char** argv)
    : arguments_(argc, argv),
      executablePath_(resolveExecutablePath(argv[0])),
      bundle_(new CMainBundle),
      settings_(new CAppSettings(bundle_, executablePath_)) {}

int BrowserProcess::run() {
  const CefRefPtr<ZantrioApp> application(new ZantrioApp(settings_));
  // Sub-processes are zantrio-process. A word of this command line may be the name of a file.
  const int exitCode = CefExecuteProcess(frameworkArguments({}), application, nullptr);
  return exitCode >= 0 ? exitCode : start(application);
}

CefMainArgs BrowserProcess::frameworkArguments(const std::vector<std::string>& files) {
  frameworkWords_ = {arguments_.argv[0]};
  if (!files.empty()) {
    frameworkWords_.emplace_back("--");
    frameworkWords_.insert(frameworkWords_.end(), files.begin(), files.end());
  }
  frameworkArgv_.clear();
  for (std::string& word : frameworkWords_) {
    frameworkArgv_.push_back(word.data());
  }
  frameworkArgv_.push_back(nullptr);
  return CefMainArgs(static_cast<int>(frameworkWords_.size()), frameworkArgv_.data());
}

int BrowserProcess::start(const CefRefPtr<ZantrioApp>& application) {
  const StartOptions options =
      parseStartOptions({arguments_.argv + 1, arguments_.argv + arguments_.argc});
  if (!options.error.empty()) {
    std::cerr << "zantrio: " << options.error << std::endl;
    return kUsageError;
  }
  if (options.help) {
    std::cout << kHelp;
    return kSuccess;
  }
  if (options.version) {
    std::cout << "Zantrio " << version() << std::endl;
    return kSuccess;
  }
  if (!prepareDataFolder()) {
    return kFailure;
  }
  if (!bundle_->error().empty()) {
    report(bundle_->error());
    return kFailure;
  }
  if (options.offScreenRendering) {
    application->showOffScreen();
  }
  return runBrowser(application, options);
}

int BrowserProcess::runBrowser(const CefRefPtr<CefApp>& application, const StartOptions& options) {
  const std::vector<std::string> files = absolutePaths(options.files, workingFolder());
  reportMissing(options.files);
  std::string loadingPage;
  settings_->getLoadingPagePath(loadingPage);
  if (!std::filesystem::exists(loadingPage)) {
    report("The loading page " + loadingPage + " is missing; the window stays empty at first.");
  }
  CefSettings frameworkSettings;
  fillFrameworkSettings(*settings_, frameworkSettings);
  frameworkSettings.windowless_rendering_enabled = options.offScreenRendering;
  CefString(&frameworkSettings.browser_subprocess_path) = subProcessExecutablePath(executablePath_);
  CInitialFilesContainer::instance().set(files, true, false);
  if (!CefInitialize(frameworkArguments(options.files), frameworkSettings, application, nullptr)) {
    if (CefGetExitCode() == CEF_RESULT_CODE_NORMAL_EXIT_PROCESS_NOTIFIED) {
      return kSuccess;
    }
    report("The browser framework cannot start; see cef_browser.log beside the application log.");
    return kFailure;
  }
  {
    const ShutdownSignals signals(
        [](bool force) { CefPostTask(TID_UI, base::BindOnce(&closeApplication, force)); });
    CefRunMessageLoop();
  }
  CefShutdown();
  return kSuccess;
}

bool BrowserProcess::prepareDataFolder() const {
  std::string folder;
  settings_->getAppDataFolder(folder);
  if (folder.empty()) {
    std::cerr << "zantrio: There is no home folder to keep the application's data in." << std::endl;
    return false;
  }
  if (const std::error_code error = zantrio::prepareDataFolder(folder)) {
    std::cerr << "zantrio: The data folder " << folder << " cannot be written: " << error.message()
              << std::endl;
    return false;
  }
  std::string logPath;
  settings_->getAppLogPath(logPath);
  // Before the first line of this run, which makes the log newer than any report.
  const std::vector<std::string> crashes = CrashReportFolder(folder).writtenAfter(logPath);
  if (CLogHolder* const log = CLogHolder::get()) {
    log->setLogPath(logPath);
  }
  for (const std::string& path : crashes) {
    logWarning("Found crash report ", path);
  }
  return true;
}

std::string BrowserProcess::version() const {
  std::string version = "(unknown version)";
  settings_->getVersion(version);
  return version;
}

}  // namespace zantrio
