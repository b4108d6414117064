#include <gtest/gtest.h>

#include <QApplication>

#include "services/os_file_explorer.h"
#include "services/user_notification_handler.h"
#include "src/platform/linux/services/fake_opener.h"
#include "support/temporary_folder.h"

namespace zantrio {
namespace {

TEST(WithoutSessionBus, OpensFoldersWithTheOpener) {
  const test::TemporaryFolder folder;
  const test::FakeOpener opener;
  EXPECT_TRUE(createOsFileExplorer()->openFolder(folder.path()));
  EXPECT_EQ(opener.waitForStarts(1),
            QStringList(QString::fromStdString("1: file://" + folder.path() + "/")));
}

TEST(WithoutSessionBus, DropsNotifications) {
  createUserNotificationHandler()->show({"title", "message", "https://example.test/"});
}

TEST(WithoutSessionBus, TellsThatNothingCouldBeStarted) {
  const test::TemporaryFolder folder;
  const QByteArray path = qgetenv("PATH");
  qputenv("PATH", QByteArray::fromStdString(folder.path()));
  EXPECT_FALSE(createOsFileExplorer()->openURL("https://example.test/"));
  EXPECT_FALSE(createOsFileExplorer()->openFolder(folder.path()));
  qputenv("PATH", path);
}

}  // namespace
}  // namespace zantrio

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
