#include "platform/linux/notifications/user_notification_handler.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QIcon>
#include <QStringList>
#include <QVariantMap>
#include <new>

#include "platform/linux/application/application.h"
#include "platform/linux/application/application_icon.h"
#include "platform/linux/notifications/notification_image.h"

namespace zantrio {
namespace {

struct ShownNotification {
  QString title;
  QString message;
  QString url;
};

// Beyond this no server shows anything, and the bus refuses messages without measure.
constexpr qsizetype kMostCharacters = 10'000;

// The names of the desktop entry and of the icon.
const QString kApplication = QStringLiteral("zantrio");

QString cut(const std::string& text) {
  QString shown = toShownText(text);
  if (shown.size() <= kMostCharacters) {
    return shown;
  }
  const bool endsInPair = shown[kMostCharacters - 1].isHighSurrogate();
  return shown.left(kMostCharacters - (endsInPair ? 1 : 0)) + u'…';
}

QDBusMessage request(const QString& method) {
  return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Notifications"),
                                        QStringLiteral("/org/freedesktop/Notifications"),
                                        QStringLiteral("org.freedesktop.Notifications"), method);
}

QVariantMap hints(const QString& url) {
  QVariantMap hints = {{QStringLiteral("desktop-entry"), kApplication},
                       {QStringLiteral("x-zantrio-url"), url}};
  // The server knows the icon by its name only where the application is installed.
  if (!QIcon::hasThemeIcon(kApplication) && canShowWidgets()) {
    hints[QStringLiteral("image-data")] = notificationImage(applicationIcon());
  }
  return hints;
}

void notify(const ShownNotification& notification, bool serverReadsMarkup) {
  constexpr unsigned kReplacesNone = 0;
  constexpr int kServersOwnTimeLimit = -1;
  const QString& message = notification.message;
  QDBusMessage call = request(QStringLiteral("Notify"));
  call << QStringLiteral("Zantrio") << kReplacesNone << kApplication << notification.title
       << (serverReadsMarkup ? message.toHtmlEscaped() : message) << QStringList()
       << hints(notification.url) << kServersOwnTimeLimit;
  QDBusConnection::sessionBus().send(call);
}

}  // namespace

void CUserNotificationHandlerLinux::show(const UserNotification& notification) {
  if (QCoreApplication::instance() == nullptr) {
    return;
  }
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    return;
  }
  const ShownNotification shown{cut(notification.title), cut(notification.message),
                                cut(notification.url)};
  // The answer comes when this object is long gone, so the watcher belongs to the application.
  auto* capabilities = new QDBusPendingCallWatcher(
      bus.asyncCall(request(QStringLiteral("GetCapabilities"))), QCoreApplication::instance());
  QObject::connect(capabilities, &QDBusPendingCallWatcher::finished, capabilities,
                   [capabilities, shown] {
                     const QDBusPendingReply<QStringList> answer = *capabilities;
                     if (answer.isValid()) {
                       notify(shown, answer.value().contains(QStringLiteral("body-markup")));
                     }
                     capabilities->deleteLater();
                   });
}

std::unique_ptr<IUserNotificationHandler> createUserNotificationHandler() {
  return std::unique_ptr<IUserNotificationHandler>(new (std::nothrow)
                                                       CUserNotificationHandlerLinux);
}

}  // namespace zantrio
