#include "base/browser_log.h"

#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <system_error>

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
  file_ = std::fopen(QFile::encodeName(path).constData(), "ae");
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
  const QByteArray line =
      QStringLiteral("[%1:%2:%3:%4] ")
          .arg(QString::number(getpid()), time, QString::fromLatin1(nameOf(severity)), source)
          .toUtf8() +
      text.toUtf8() + '\n';
  const std::lock_guard lock(mutex_);
  if (!file_ || severity < lowest_) {
    return;
  }
  // Write errors are ignored: a full disk must not stop the browser.
  std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), file_);
  std::fflush(file_);
}

}  // namespace cef_qt
