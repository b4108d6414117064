#include "platform/linux/services/os_file_explorer.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QStringList>
#include <new>

#include "files/file_status.h"
#include "files/file_url.h"
#include "platform/linux/services/desktop_opener.h"
#include "services/openable_url.h"

namespace zantrio {
namespace {

// Long enough for a file manager that has to be started first.
constexpr int kAnswerLimitMs = 10'000;

QDBusMessage showFolderRequest(const QString& folderUrl) {
  QDBusMessage request = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"),
      QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowFolders"));
  request << QStringList{folderUrl} << QString();  // the second is a start-up id; there is none
  return request;
}

// The answer comes when the caller is long gone, so the watcher belongs to the application.
void askFileManager(const QDBusConnection& bus, const QString& folderUrl) {
  auto* answer = new QDBusPendingCallWatcher(
      bus.asyncCall(showFolderRequest(folderUrl), kAnswerLimitMs), QCoreApplication::instance());
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer, [answer, folderUrl] {
    if (answer->isError()) {
      startDesktopOpener(folderUrl);
    }
    answer->deleteLater();
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
