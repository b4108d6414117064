#include "platform/linux/services/user_notification_handler.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QIcon>

#include "services/platform_init.h"
#include "src/platform/linux/event_loop.h"
#include "src/platform/linux/recorded_service.h"

namespace zantrio {
namespace {

const QString kServer = "org.freedesktop.Notifications";
const QString kServerPath = "/org/freedesktop/Notifications";

class UserNotificationHandlerLinux : public testing::Test {
 protected:
  UserNotificationHandlerLinux() { server_.setReply("GetCapabilities", QStringList{"body"}); }

  static void show(const UserNotification& notification) {
    createUserNotificationHandler()->show(notification);
  }

  QString shownMessage(const std::string& message) {
    show({"title", message, ""});
    return server_.waitForCall("Notify").arguments().value(4).toString();
  }

  test::RecordedService server_{kServer, kServerPath};
};

TEST_F(UserNotificationHandlerLinux, SendsAllFieldsAndTheDrawnIcon) {
  show({"Fertig: gr\u00FC\u00DFe \u65E5\u672C", "2 files", "https://example.test/t/1"});
  const QDBusMessage call = server_.waitForCall("Notify");
  EXPECT_EQ(call.interface(), kServer);
  EXPECT_EQ(call.signature(), "susssasa{sv}i");
  const QVariantList arguments = call.arguments();
  ASSERT_EQ(arguments.size(), 8);
  EXPECT_EQ(arguments[0].toString(), "Zantrio");
  EXPECT_EQ(arguments[1].toUInt(), 0U);
  EXPECT_EQ(arguments[2].toString(), "zantrio");
  EXPECT_EQ(arguments[3].toString(), QString::fromUtf8("Fertig: gr\u00FC\u00DFe \u65E5\u672C"));
  EXPECT_EQ(arguments[4].toString(), "2 files");
  EXPECT_EQ(arguments[5].toStringList(), QStringList());
  const auto hints = qdbus_cast<QVariantMap>(arguments[6]);
  EXPECT_EQ(hints["desktop-entry"].toString(), "zantrio");
  EXPECT_EQ(hints["x-zantrio-url"].toString(), "https://example.test/t/1");
  EXPECT_EQ(arguments[7].toInt(), -1);
  createPlatformInit()->init();
  EXPECT_EQ(QGuiApplication::desktopFileName(), "zantrio");
  EXPECT_EQ(QApplication::windowIcon().pixmap(32).width(), 32);
  // No icon is installed.
  ASSERT_FALSE(QIcon::hasThemeIcon("zantrio"));
  const auto image = hints["image-data"].value<QDBusArgument>();
  EXPECT_EQ(image.currentSignature(), "(iiibiiay)");
  int width = 0;
  int height = 0;
  int bytesPerLine = 0;
  bool hasAlpha = false;
  int bitsPerSample = 0;
  int channels = 0;
  QByteArray pixels;
  image.beginStructure();
  image >> width >> height >> bytesPerLine >> hasAlpha >> bitsPerSample >> channels >> pixels;
  image.endStructure();
  EXPECT_EQ(QSize(width, height), QSize(64, 64));
  EXPECT_EQ(pixels.size(), qsizetype{height} * bytesPerLine);
  // Transparent at the corner, the background's colour near the edge.
  EXPECT_EQ(pixels.mid(0, 4).toHex(), "00000000");
  EXPECT_EQ(pixels.mid(32 * bytesPerLine + 4 * 4, 4).toHex(), "0b6e7dff");
}

TEST_F(UserNotificationHandlerLinux, MakesTheMessageSafeForTheServerAndTheBus) {
  const std::string kept(9'999, 'x');
  const std::pair<std::string, QString> messages[] = {
      {"<b>a</b> & b", "<b>a</b> & b"},
      {std::string("a\0b\xFF", 4), QString::fromUtf8("a\uFFFDb\uFFFD")},
      {std::string(5'000'000, 'x'), QString(10'000, 'x') + u'…'},
      // The cut does not split the character.
      {kept + "😀 and more", QString::fromStdString(kept) + u'…'},
      {"", ""}};
  for (const auto& [message, shown] : messages) {
    EXPECT_EQ(shownMessage(message), shown);
    server_.forgetCalls();
  }
  server_.setReply("GetCapabilities", QStringList{"body", "body-markup"});
  EXPECT_EQ(shownMessage("<img src=x> & \"<b>\""), "&lt;img src=x&gt; &amp; &quot;&lt;b&gt;&quot;");
}

TEST_F(UserNotificationHandlerLinux, DropsTheNotificationIfTheServerRefuses) {
  server_.refuse("GetCapabilities");
  show({"title", "message", ""});
  server_.waitForCall("GetCapabilities");
  // A later call gets its reply after anything that follows the refusal.
  QDBusConnection bus = QDBusConnection::sessionBus();
  bool replied = false;
  QDBusPendingCallWatcher later(
      bus.asyncCall(QDBusMessage::createMethodCall(kServer, kServerPath, kServer, "Later")));
  QObject::connect(&later, &QDBusPendingCallWatcher::finished, [&replied] { replied = true; });
  EXPECT_TRUE(test::waitFor([&replied] { return replied; }));
  EXPECT_EQ(server_.calls().size(), 2U);
}

}  // namespace
}  // namespace zantrio
