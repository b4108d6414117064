#pragma once

#include <Poco/SharedPtr.h>

#include <string>
#include <vector>

#include "app/settings/app_settings.h"
#include "app/settings/main_bundle.h"
#include "app/start_options.h"
#include "app/zantrio_app.h"
#include "include/cef_app.h"

namespace zantrio {

// The browser process from its start to its end. Errors that keep it from starting are reported on
// standard error and, where it can be written, in the application log.
class BrowserProcess {
 public:
  BrowserProcess(int argc, char** argv);

  // Returns the exit code: 0 after a clean end, and when another process has taken over the files.
  int run();

 private:
  int start(const CefRefPtr<ZantrioApp>& application);
  int runBrowser(const CefRefPtr<CefApp>& application, const StartOptions& options);
  // The command line for the framework: the program and the files. The files follow "--", so that
  // none is taken for a switch. Valid until the next call.
  CefMainArgs frameworkArguments(const std::vector<std::string>& files);
  bool prepareDataFolder() const;
  std::string version() const;

  const CefMainArgs arguments_;
  const std::string executablePath_;
  const Poco::SharedPtr<CMainBundle> bundle_;
  const Poco::SharedPtr<CAppSettings> settings_;
  std::vector<std::string> frameworkWords_;
  std::vector<char*> frameworkArgv_;
};

}  // namespace zantrio
