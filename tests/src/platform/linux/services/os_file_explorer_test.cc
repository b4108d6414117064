#include "platform/linux/services/os_file_explorer.h"

#include <gtest/gtest.h>

#include "src/platform/linux/recorded_service.h"
#include "src/platform/linux/services/fake_opener.h"
#include "support/temporary_folder.h"

namespace zantrio {
namespace {

const QString kFileManager = "org.freedesktop.FileManager1";
const QString kFileManagerPath = "/org/freedesktop/FileManager1";

class OsFileExplorerLinux : public testing::Test {
 protected:
  const test::TemporaryFolder folder_;
  const test::FakeOpener opener_;
};

TEST_F(OsFileExplorerLinux, AsksTheFileManagerToShowTheFolder) {
  test::RecordedService fileManager(kFileManager, kFileManagerPath);
  EXPECT_TRUE(createOsFileExplorer()->openFolder(folder_.makeFolder("my f\u00F6lder 100%")));
  const QDBusMessage call = fileManager.waitForCall("ShowFolders");
  EXPECT_EQ(call.interface(), kFileManager);
  EXPECT_EQ(call.signature(), "ass");
  EXPECT_EQ(call.arguments().value(0).toStringList(),
            QStringList(QString::fromStdString("file://" + folder_.path() +
                                               "/my%20f%C3%B6lder%20100%25/")));
  EXPECT_EQ(call.arguments().value(1).toString(), "");
  // The opener is first started for a later call.
  const std::string url = "https://example.test/a?b=c&d=$(touch%20x);e='f'*";  // no shell reads it
  EXPECT_TRUE(createOsFileExplorer()->openURL(url));
  EXPECT_EQ(opener_.waitForStarts(1), QStringList(QString::fromStdString("1: " + url)));
}

TEST_F(OsFileExplorerLinux, StartsTheOpenerIfTheFileManagerIsMissingOrRefuses) {
  const QString url = QString::fromStdString("1: file://" + folder_.path() + "/a%20b/");
  EXPECT_TRUE(createOsFileExplorer()->openFolder(folder_.makeFolder("a b")));
  EXPECT_EQ(opener_.waitForStarts(1), QStringList(url));
  test::RecordedService fileManager(kFileManager, kFileManagerPath);
  fileManager.refuse("ShowFolders");
  EXPECT_TRUE(createOsFileExplorer()->openFolder(folder_.path() + "/a b"));
  EXPECT_EQ(opener_.waitForStarts(2), (QStringList{url, url}));
}

TEST_F(OsFileExplorerLinux, OpensOnlyFoldersAndOpenableUrls) {
  EXPECT_FALSE(createOsFileExplorer()->openFolder(folder_.path() + "/gone"));
  EXPECT_FALSE(createOsFileExplorer()->openFolder(folder_.makeFile("program.desktop")));
  EXPECT_FALSE(createOsFileExplorer()->openFolder(""));
  EXPECT_FALSE(createOsFileExplorer()->openURL(""));
  EXPECT_FALSE(createOsFileExplorer()->openURL("--help"));
  EXPECT_FALSE(createOsFileExplorer()->openURL("file:///usr/bin/true"));
  EXPECT_TRUE(createOsFileExplorer()->openURL("mailto:a@example.test"));
  EXPECT_EQ(opener_.waitForStarts(1), QStringList("1: mailto:a@example.test"));
}

TEST_F(OsFileExplorerLinux, KeepsTheFrameworksVariablesFromOtherPrograms) {
  qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--no-sandbox");
  qputenv("QT_QUICK_BACKEND", "software");
  qputenv("ZANTRIO_TEST_VARIABLE", "stays");
  EXPECT_TRUE(createOsFileExplorer()->openURL("https://example.test/"));
  opener_.waitForStarts(1);
  const QStringList environment = opener_.environment();
  EXPECT_TRUE(environment.contains("ZANTRIO_TEST_VARIABLE=stays"));
  EXPECT_TRUE(environment.filter("QTWEBENGINE").isEmpty());
  EXPECT_TRUE(environment.filter("QT_QUICK_BACKEND").isEmpty());
  for (const char* variable :
       {"QTWEBENGINE_CHROMIUM_FLAGS", "QT_QUICK_BACKEND", "ZANTRIO_TEST_VARIABLE"}) {
    qunsetenv(variable);
  }
}

}  // namespace
}  // namespace zantrio
