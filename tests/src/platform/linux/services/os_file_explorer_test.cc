#include "platform/linux/services/os_file_explorer.h"

#include <gtest/gtest.h>

#include "src/platform/linux/recorded_service.h"
#include "src/platform/linux/services/fake_opener.h"
#include "support/temporary_folder.h"

namespace zantrio {
namespace {

class OsFileExplorerLinux : public testing::Test {
 protected:
  const test::TemporaryFolder folder_;
  const test::FakeOpener opener_;
};

TEST_F(OsFileExplorerLinux, StartsTheOpenerIfTheFileManagerIsMissingOrRefuses) {
  const QString url = QString::fromStdString("1: file://" + folder_.path() + "/a%20b/");
  EXPECT_TRUE(createOsFileExplorer()->openFolder(folder_.makeFolder("a b")));
  EXPECT_EQ(opener_.waitForStarts(1), QStringList(url));
  test::RecordedService fileManager("org.freedesktop.FileManager1",
                                    "/org/freedesktop/FileManager1");
  fileManager.refuse("ShowFolders");
  EXPECT_TRUE(createOsFileExplorer()->openFolder(folder_.path() + "/a b"));
  EXPECT_EQ(opener_.waitForStarts(2), (QStringList{url, url}));
}

TEST_F(OsFileExplorerLinux, TellsThatNothingCouldBeStarted) {
  const QByteArray path = qgetenv("PATH");
  qputenv("PATH", "/nonexistent");
  EXPECT_FALSE(createOsFileExplorer()->openURL("https://example.test/"));
  qputenv("PATH", path);
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
