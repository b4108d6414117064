#include "platform/linux/user_notification_handler_linux.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>
#include <new>

#include "platform/linux/application_linux.h"

namespace zantrio {
namespace {

struct ShownNotification {
  QString title;
  QString message;
  QString url;
};

// Beyond this no server shows anything, and the bus refuses messages without measure.
constexpr qsizetype kMostCharacters = 10'000;

QString cut(const std::string& text) {
  const QString shown = toShownText(text);
  return shown.size() <= kMostCharacters ? shown : shown.left(kMostCharacters) + u'…';
}

QDBusMessage request(const QString& method) {
  return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Notifications"),
                                        QStringLiteral("/org/freedesktop/Notifications"),
                                        QStringLiteral("org.freedesktop.Notifications"), method);
}

void notify(const ShownNotification& notification, bool serverReadsMarkup) {
  constexpr unsigned kReplacesNone = 0;
  constexpr int kServersOwnTimeLimit = -1;
  const QString& message = notification.message;
  const QVariantMap hints = {{QStringLiteral("desktop-entry"), QStringLiteral("zantrio")},
                             {QStringLiteral("x-zantrio-url"), notification.url}};
  QDBusMessage call = request(QStringLiteral("Notify"));
  call << QStringLiteral("Zantrio") << kReplacesNone << QStringLiteral("zantrio")
       << notification.title << (serverReadsMarkup ? message.toHtmlEscaped() : message)
       << QStringList() << hints << kServersOwnTimeLimit;
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
