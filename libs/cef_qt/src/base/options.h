// The framework's settings in Qt's types, checked.
#pragma once

#include <QString>

#include "include/internal/cef_types_wrappers.h"

namespace cef_qt {

struct Options {
  QString cachePath;      // empty: everything in memory
  QString rootCachePath;  // empty: no instance lock
  QString userAgent;
  QString logFile;
  QString subprocessPath;
  cef_log_severity_t logSeverity = LOGSEVERITY_DEFAULT;
  int remoteDebuggingPort = 0;
  bool persistSessionCookies = false;
  bool noSandbox = false;
  bool offScreen = false;  // browsers may be drawn off screen
};

// Reads the settings. Paths that cannot be used are reported on standard error and left out. Makes
// the cache folders.
Options readOptions(const CefSettings& settings);

// Whether the settings ask for a way of running that is not served; reported on standard error.
bool asksForUnservedLoop(const CefSettings& settings);

}  // namespace cef_qt
