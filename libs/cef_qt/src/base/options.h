// The checked settings of the framework in Qt's types.
#pragma once

#include <QString>

#include "include/internal/cef_types_wrappers.h"

namespace cef_qt {

struct Options {
  QString cachePath;      // empty: data is kept in memory
  QString rootCachePath;  // empty: no instance lock
  QString userAgent;
  QString logFile;
  QString subprocessPath;
  cef_log_severity_t logSeverity = LOGSEVERITY_DEFAULT;
  int remoteDebuggingPort = 0;
  bool persistSessionCookies = false;
  bool noSandbox = false;
  bool offScreen = false;  // off-screen browsers are allowed
};

// Reads the settings and creates the cache folders. Unusable paths are reported on standard error
// and become empty.
Options readOptions(const CefSettings& settings);

// Whether the settings request an unsupported message loop; reported on standard error.
bool requestsUnsupportedLoop(const CefSettings& settings);

}  // namespace cef_qt
