// The plain process entry, which the framework starts for its sub-processes. It runs no message
// loop of its own.
#include <Poco/SharedPtr.h>

#include <exception>
#include <iostream>

#include "app/app_settings.h"
#include "app/executable_path.h"
#include "app/logger.h"
#include "app/main_bundle.h"
#include "app/zantrio_app.h"
#include "include/cef_app.h"

namespace {

void setLogPath(const zantrio::CAppSettings& settings) {
  std::string path;
  settings.getAppLogPath(path);
  if (zantrio::CLogHolder* const log = zantrio::CLogHolder::get()) {
    log->setLogPath(path);
  }
}

int runProcess(int argc, char** argv) {
  const Poco::SharedPtr<zantrio::CMainBundle> bundle(new zantrio::CMainBundle);
  const Poco::SharedPtr<zantrio::CAppSettings> settings(
      new zantrio::CAppSettings(bundle, zantrio::resolveExecutablePath(argv[0])));
  setLogPath(*settings);
  const CefRefPtr<zantrio::ZantrioApp> application(new zantrio::ZantrioApp(settings));
  return CefExecuteProcess(CefMainArgs(argc, argv), application, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return runProcess(argc, argv);
  } catch (const std::exception& exception) {
    std::cerr << "zantrio-process: " << exception.what() << std::endl;
    return 1;
  }
}
