// The browser log.
#pragma once

#include <QString>
#include <cstdio>
#include <mutex>

#include "include/internal/cef_types.h"

namespace cef_qt {

// Writes lines in Chromium's format. Thread-safe. Without effect while no file is open.
class BrowserLog {
 public:
  static BrowserLog& instance();

  // Appends to the file. A failure is reported on standard error and leaves the log closed.
  void open(const QString& path, cef_log_severity_t lowest);
  void close();

  void write(cef_log_severity_t severity, const char* source, const QString& text);
  // Writes a message of a page's console.
  void console(cef_log_severity_t severity, const QString& text, int line, const QString& source);

 private:
  void writeLine(cef_log_severity_t severity, const QString& source, const QString& text);

  std::mutex mutex_;
  std::FILE* file_ = nullptr;                        // guarded by mutex_
  cef_log_severity_t lowest_ = LOGSEVERITY_DISABLE;  // guarded by mutex_
};

}  // namespace cef_qt
