#include "base/browser_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <string>
#include <system_error>

#include "shown_text/one_line.h"
#include "shown_text/secrets.h"

namespace cef_qt {
namespace {

const char* nameOf(cef_log_severity_t severity) {
  switch (severity) {
    case LOGSEVERITY_VERBOSE:
      return "VERBOSE1";
    case LOGSEVERITY_WARNING:
      return "WARNING";
    case LOGSEVERITY_ERROR:
      return "ERROR";
    case LOGSEVERITY_FATAL:
      return "FATAL";
    default:
      return "INFO";
  }
}

// Only its owner may read it, whoever made it and whatever the mask of new files is.
std::FILE* openPrivate(const QByteArray& path) {
  constexpr mode_t kMode = 0600;
  const int file = ::open(path.constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kMode);
  if (file < 0) {
    return nullptr;
  }
  fchmod(file, kMode);
  return fdopen(file, "a");
}

}  // namespace

BrowserLog& BrowserLog::instance() {
  static BrowserLog log;
  return log;
}

void BrowserLog::open(const QString& path, cef_log_severity_t lowest) {
  const std::lock_guard lock(mutex_);
  if (path.isEmpty() || lowest == LOGSEVERITY_DISABLE) {
    return;
  }
  QDir().mkpath(QFileInfo(path).absolutePath());
  file_ = openPrivate(QFile::encodeName(path));
  if (!file_) {
    std::fprintf(stderr, "The browser log %s cannot be written (%s): going on without it.\n",
                 QFile::encodeName(path).constData(),
                 std::generic_category().message(errno).c_str());
    return;
  }
  lowest_ = lowest == LOGSEVERITY_DEFAULT ? LOGSEVERITY_INFO : lowest;
}

void BrowserLog::close() {
  const std::lock_guard lock(mutex_);
  if (file_) {
    std::fclose(file_);
    file_ = nullptr;
  }
}

void BrowserLog::write(cef_log_severity_t severity, const char* source, const QString& text) {
  writeLine(severity, QString::fromUtf8(source), text);
}

void BrowserLog::console(cef_log_severity_t severity, const QString& text, int line,
                         const QString& source) {
  writeLine(severity, QStringLiteral("CONSOLE(%1)").arg(line),
            QStringLiteral("\"%1\", source: %2 (%3)").arg(text, source, QString::number(line)));
}

void BrowserLog::writeLine(cef_log_severity_t severity, const QString& source,
                           const QString& text) {
  const QString time = QDateTime::currentDateTime().toString(QStringLiteral("MMdd/HHmmss.zzz"));
  std::string shown = shown_text::oneLine(text.toStdString());
  shown_text::maskSecrets(shown);
  const std::string line =
      QStringLiteral("[%1:%2:%3:%4] ")
          .arg(QString::number(getpid()), time, QString::fromLatin1(nameOf(severity)), source)
          .toStdString() +
      shown + '\n';
  const std::lock_guard lock(mutex_);
  if (!file_ || severity < lowest_) {
    return;
  }
  // Write errors are ignored: a full disk must not stop the browser.
  std::fwrite(line.data(), 1, line.size(), file_);
  std::fflush(file_);
}

}  // namespace cef_qt
