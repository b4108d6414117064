#include "app/sub_process.h"

#include <Poco/SharedPtr.h>

#include <string>

#include "app/log/logger.h"
#include "app/settings/app_settings.h"
#include "app/settings/executable_path.h"
#include "app/settings/main_bundle.h"
#include "app/zantrio_app.h"
#include "include/cef_app.h"

namespace zantrio {
namespace {

void setLogPath(const CAppSettings& settings) {
  std::string path;
  settings.getAppLogPath(path);
  if (CLogHolder* const log = CLogHolder::get()) {
    log->setLogPath(path);
  }
}

}  // namespace

int runSubProcess(int argc, char** argv) {
  const Poco::SharedPtr<CMainBundle> bundle(new CMainBundle);
  const Poco::SharedPtr<CAppSettings> settings(
      new CAppSettings(bundle, resolveExecutablePath(argv[0])));
  setLogPath(*settings);
  const CefRefPtr<ZantrioApp> application(new ZantrioApp(settings));
  return CefExecuteProcess(CefMainArgs(argc, argv), application, nullptr);
}

}  // namespace zantrio
