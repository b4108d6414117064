#include "platform/linux/notifications/notification_image.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QImage>

namespace zantrio {

// The hint's structure, (iiibiiay).
struct NotificationImage {
  int width = 0;
  int height = 0;
  int bytesPerLine = 0;
  bool hasAlpha = true;
  int bitsPerSample = 8;
  int channels = 4;
  QByteArray pixels;  // red, green, blue, alpha
};

// Found by the toolkit by their names and arguments.
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

}  // namespace zantrio
