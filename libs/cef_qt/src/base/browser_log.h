// The browser's log file.
#pragma once

#include <QString>
#include <cstdio>
#include <mutex>

#include "include/internal/cef_types.h"

namespace cef_qt {

// Lines in Chromium's form. Usable from any thread; without an open file nothing is written.
class BrowserLog {
 public:
  static BrowserLog& instance();

  // Appends to the file from now on; when that fails says so on standard error and goes on without.
  void open(const QString& path, cef_log_severity_t lowest);
  void close();

  void write(cef_log_severity_t severity, const char* source, const QString& text);
  // A message of a page's console.
  void console(cef_log_severity_t severity, const QString& text, int line, const QString& source);

 private:
  void writeLine(cef_log_severity_t severity, const QString& source, const QString& text);

  std::mutex mutex_;
  std::FILE* file_ = nullptr;                        // guarded by mutex_
  cef_log_severity_t lowest_ = LOGSEVERITY_DISABLE;  // guarded by mutex_
};

}  // namespace cef_qt
