#include "base/options.h"

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

#include "base/qt_text.h"

namespace cef_qt {
namespace {

QString textOf(const cef_string_t& field) {
  return toQt(CefString(&field));
}

void warn(const QString& path, const char* what) {
  std::fprintf(stderr, "%s %s\n", QFile::encodeName(path).constData(), what);
}

// Creates the folder if it is missing. Empty, with a warning on standard error, if it is unusable.
QString usableFolder(const QString& path) {
  if (path.isEmpty()) {
    return path;
  }
  if (!QDir::isAbsolutePath(path)) {
    warn(path, "is not an absolute path: the browser keeps its data in memory.");
    return {};
  }
  QString clean = QDir::cleanPath(path);
  if (!QDir().mkpath(clean) || access(QFile::encodeName(clean).constData(), W_OK | X_OK) != 0) {
    warn(path, "cannot be written: the browser keeps its data in memory.");
    return {};
  }
  return clean;
}

bool isOrIsBelow(const QString& path, const QString& root) {
  return path == root || path.startsWith(root.endsWith('/') ? root : root + '/');
}

// HTTP headers are ASCII.
QString asciiOnly(const QString& text) {
  QString out;
  for (const QChar c : text) {
    if (c.unicode() >= 0x20 && c.unicode() < 0x7F) {
      out += c;
    }
  }
  return out;
}

void readCachePaths(const CefSettings& settings, Options& options) {
  const QString root = textOf(settings.root_cache_path);
  const QString cache = textOf(settings.cache_path);
  options.rootCachePath = usableFolder(root.isEmpty() ? cache : root);
  if (!root.isEmpty() && !cache.isEmpty() &&
      !isOrIsBelow(QDir::cleanPath(cache), QDir::cleanPath(root))) {
    warn(cache, "is not below the root cache path: the browser keeps its data in memory.");
  } else if (options.rootCachePath.isEmpty()) {
    options.cachePath.clear();
  } else {
    options.cachePath = usableFolder(cache);
  }
}

}  // namespace

Options readOptions(const CefSettings& settings) {
  Options options;
  readCachePaths(settings, options);
  options.userAgent = asciiOnly(textOf(settings.user_agent));
  options.logFile = textOf(settings.log_file);
  options.subprocessPath = textOf(settings.browser_subprocess_path);
  options.logSeverity = settings.log_severity;
  options.remoteDebuggingPort = settings.remote_debugging_port;
  options.persistSessionCookies = settings.persist_session_cookies != 0;
  options.noSandbox = settings.no_sandbox != 0;
  options.offScreen = settings.windowless_rendering_enabled != 0;
  return options;
}

bool requestsUnsupportedLoop(const CefSettings& settings) {
  if (settings.multi_threaded_message_loop || settings.external_message_pump) {
    std::fprintf(stderr, "Only CefRunMessageLoop on the thread of CefInitialize is served.\n");
    return true;
  }
  return false;
}

}  // namespace cef_qt
