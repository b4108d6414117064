#include "platform/linux/services/os_file_explorer.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <new>

#include "files/file_status.h"
#include "files/file_url.h"
#include "services/openable_url.h"

namespace zantrio {
namespace {

// Another browser on the same engine would inherit our switches, sandbox and debugging port.
bool isFrameworksOwn(const QString& variable) {
  return variable.startsWith(QLatin1String("QTWEBENGINE")) ||
         variable.startsWith(QLatin1String("CEF_QT_")) ||
         variable == QLatin1String("QT_QUICK_BACKEND") || variable == QLatin1String("QT_NO_GLIB");
}

QProcessEnvironment usersEnvironment() {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const QString& variable : environment.keys()) {
    if (isFrameworksOwn(variable)) {
      environment.remove(variable);
    }
  }
  return environment;
}

// Starts xdg-open with `url` as its only argument, without a shell, and does not wait. It gets the
// user's environment without the browser framework's variables. Returns false if it cannot be
// started.
bool startDesktopOpener(const QString& url) {
  QProcess opener;
  opener.setProgram(QStringLiteral("xdg-open"));
  opener.setArguments({url});
  opener.setProcessEnvironment(usersEnvironment());
  // Started programs outlive the application and must not write into its logs.
  opener.setStandardInputFile(QProcess::nullDevice());
  opener.setStandardOutputFile(QProcess::nullDevice());
  opener.setStandardErrorFile(QProcess::nullDevice());
  return opener.startDetached();
}

// Allows for a file manager that has to start.
constexpr int kReplyTimeoutMs = 10'000;

QDBusMessage showFolderRequest(const QString& folderUrl) {
  QDBusMessage request = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"),
      QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowFolders"));
  request << QStringList{folderUrl} << QString();  // the second is a start-up id; there is none
  return request;
}

// The reply arrives after the caller is destroyed, so the watcher belongs to the application.
void askFileManager(const QDBusConnection& bus, const QString& folderUrl) {
  auto* reply = new QDBusPendingCallWatcher(
      bus.asyncCall(showFolderRequest(folderUrl), kReplyTimeoutMs), QCoreApplication::instance());
  QObject::connect(reply, &QDBusPendingCallWatcher::finished, reply, [reply, folderUrl] {
    if (reply->isError()) {
      startDesktopOpener(folderUrl);
    }
    reply->deleteLater();
  });
}

}  // namespace

bool COsFileExplorerLinux::openFolder(const std::string& path) {
  FileStatus status;
  if (QCoreApplication::instance() == nullptr || readFileStatus(path, status) != 0 ||
      !status.isDirectory()) {
    return false;
  }
  std::string url;
  filePathToUrl(path, true, url);
  const QString folderUrl = QString::fromLatin1(url.data(), static_cast<qsizetype>(url.size()));
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    return startDesktopOpener(folderUrl);
  }
  askFileManager(bus, folderUrl);
  return true;
}

bool COsFileExplorerLinux::openURL(const std::string& url) {
  return QCoreApplication::instance() != nullptr && isOpenableUrl(url) &&
         startDesktopOpener(QString::fromLatin1(url.data(), static_cast<qsizetype>(url.size())));
}

std::unique_ptr<IOsFileExplorer> createOsFileExplorer() {
  return std::unique_ptr<IOsFileExplorer>(new (std::nothrow) COsFileExplorerLinux);
}

}  // namespace zantrio
