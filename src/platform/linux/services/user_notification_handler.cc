#include "platform/linux/services/user_notification_handler.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QIcon>
#include <QImage>
#include <QStringList>
#include <QVariantMap>
#include <new>

#include "platform/linux/application/application.h"

namespace zantrio {

// The structure of the notifications' hint "image-data", (iiibiiay).
struct NotificationImage {
  int width = 0;
  int height = 0;
  int bytesPerLine = 0;
  bool hasAlpha = true;
  int bitsPerSample = 8;
  int channels = 4;
  QByteArray pixels;  // red, green, blue, alpha
};

// Qt finds them by argument-dependent lookup.
QDBusArgument& operator<<(QDBusArgument& argument, const NotificationImage& image) {
  argument.beginStructure();
  argument << image.width << image.height << image.bytesPerLine << image.hasAlpha
           << image.bitsPerSample << image.channels << image.pixels;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotificationImage& image) {
  argument.beginStructure();
  argument >> image.width >> image.height >> image.bytesPerLine >> image.hasAlpha >>
      image.bitsPerSample >> image.channels >> image.pixels;
  argument.endStructure();
  return argument;
}

namespace {

struct ShownNotification {
  QString title;
  QString message;
  QString url;
};

// No server shows more, and the bus rejects oversized messages.
constexpr qsizetype kMaxCharacters = 10'000;

// The names of the desktop entry and of the icon.
const QString kApplication = QStringLiteral("zantrio");

QString cut(const std::string& text) {
  QString shown = toShownText(text);
  if (shown.size() <= kMaxCharacters) {
    return shown;
  }
  const bool endsInPair = shown[kMaxCharacters - 1].isHighSurrogate();
  return shown.left(kMaxCharacters - (endsInPair ? 1 : 0)) + u'…';
}

QDBusMessage request(const QString& method) {
  return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Notifications"),
                                        QStringLiteral("/org/freedesktop/Notifications"),
                                        QStringLiteral("org.freedesktop.Notifications"), method);
}

QVariant notificationImage(const QIcon& icon) {
  constexpr int kSize = 64;
  qDBusRegisterMetaType<NotificationImage>();
  const QImage drawn = icon.pixmap(kSize).toImage().convertToFormat(QImage::Format_RGBA8888);
  NotificationImage image;
  image.width = drawn.width();
  image.height = drawn.height();
  image.bytesPerLine = static_cast<int>(drawn.bytesPerLine());
  image.pixels = QByteArray(reinterpret_cast<const char*>(drawn.constBits()),
                            static_cast<qsizetype>(drawn.sizeInBytes()));
  return QVariant::fromValue(image);
}

QVariantMap hints(const QString& url) {
  QVariantMap hints = {{QStringLiteral("desktop-entry"), kApplication},
                       {QStringLiteral("x-zantrio-url"), url}};
  // The server finds the icon by name only if the application is installed.
  if (!QIcon::hasThemeIcon(kApplication) && canShowWidgets()) {
    hints[QStringLiteral("image-data")] = notificationImage(applicationIcon());
  }
  return hints;
}

void notify(const ShownNotification& notification, bool serverReadsMarkup) {
  constexpr unsigned kReplacesNone = 0;
  constexpr int kServerDefaultTimeout = -1;
  const QString& message = notification.message;
  QDBusMessage call = request(QStringLiteral("Notify"));
  call << QStringLiteral("Zantrio") << kReplacesNone << kApplication << notification.title
       << (serverReadsMarkup ? message.toHtmlEscaped() : message) << QStringList()
       << hints(notification.url) << kServerDefaultTimeout;
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
  // The reply arrives after this object is destroyed, so the watcher belongs to the application.
  auto* capabilities = new QDBusPendingCallWatcher(
      bus.asyncCall(request(QStringLiteral("GetCapabilities"))), QCoreApplication::instance());
  QObject::connect(capabilities, &QDBusPendingCallWatcher::finished, capabilities,
                   [capabilities, shown] {
                     const QDBusPendingReply<QStringList> reply = *capabilities;
                     if (reply.isValid()) {
                       notify(shown, reply.value().contains(QStringLiteral("body-markup")));
                     }
                     capabilities->deleteLater();
                   });
}

std::unique_ptr<IUserNotificationHandler> createUserNotificationHandler() {
  return std::unique_ptr<IUserNotificationHandler>(new (std::nothrow)
                                                       CUserNotificationHandlerLinux);
}

}  // namespace zantrio
