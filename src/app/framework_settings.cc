#include "app/framework_settings.h"

#include <string>

#include "app/settings/app_settings.h"

namespace zantrio {

void fillFrameworkSettings(const CAppSettings& settings, CefSettings& frameworkSettings) {
  std::string cachePath;
  std::string userAgent;
  std::string logFile;
  settings.getCachePath(cachePath);
  settings.getUserAgent(userAgent);
  settings.getBrowserLogPath(logFile);

  frameworkSettings.multi_threaded_message_loop = false;
  CefString(&frameworkSettings.root_cache_path) = cachePath;
  CefString(&frameworkSettings.cache_path) = cachePath;
  frameworkSettings.persist_session_cookies = true;
  CefString(&frameworkSettings.user_agent) = userAgent;
  CefString(&frameworkSettings.log_file) = logFile;
  frameworkSettings.log_severity = LOGSEVERITY_INFO;
}

}  // namespace zantrio
