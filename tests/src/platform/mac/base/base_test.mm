#include <json/value.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "app/settings/app_settings.h"
#include "app/settings/executable_path.h"
#include "app/settings/os_version.h"
#include "bridge/platform_exceptions.h"
#include "files/file_status.h"
#include "files/file_url.h"
#include "files/folder_walk.h"
#include "services/file_permissions_retriever.h"
#include "src/platform/mac/fakes/system_fake.h"
#include "src/platform/mac/mac_fixture.h"
#include "support/temporary_folder.h"

namespace zantrio::mac_test {
namespace {

class SettingsMac : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fakeSystem().information = @{
      @"CFBundleName" : @"Zo\u00EB",
      @"CFBundleShortVersionString" : @"1.2.3",
      @"AppPath" : [NSNumber numberWithInt:5],
      @"Chinese" : @"\u4E2D",
    };
    fakeSystem().gestalt = {{'sys1', 10}, {'sys2', 9}, {'sys3', 5}};
  }

  static std::string entry(const char* key) {
    std::string value = "untouched";
    CMainBundle().getString(key, value);
    return value;
  }
};

TEST_F(SettingsMac, ReadsTheMainBundlesStringsInTheSystemsEncoding) {
  EXPECT_EQ(entry("CFBundleShortVersionString"), "1.2.3");
  EXPECT_EQ(entry("CFBundleName"), "Zo\x91") << "in Mac Roman";
  for (const char* unreadable : {"AppPath", "Chinese", "Missing"}) {
    EXPECT_EQ(entry(unreadable), "untouched") << unreadable;
  }
  EXPECT_TRUE(CMainBundle().hasEntry("AppPath"));
  EXPECT_FALSE(CMainBundle().hasEntry("Missing"));
  EXPECT_EQ(CMainBundle().error(), "");
  fakeSystem().offersOwnBuffer = true;
  fakeSystem().systemEncoding = kCFStringEncodingUTF8;
  EXPECT_EQ(entry("CFBundleName"), "Zo\u00EB");
}

TEST_F(SettingsMac, ReadsABundleElsewhereAndReportsAMissingOne) {
  std::string version;
  EXPECT_TRUE(
      CMainBundle("/Applications/Zantrio.app").getString("CFBundleShortVersionString", version));
  EXPECT_EQ(fakeSystem().createdBundle, "/Applications/Zantrio.app");
  fakeSystem().hasMainBundle = false;
  EXPECT_EQ(entry("CFBundleName"), "untouched");
  EXPECT_FALSE(CMainBundle().hasEntry("CFBundleName"));
  EXPECT_NE(CMainBundle().error(), "");
}

TEST_F(SettingsMac, NamesTheSystemsReleaseInTheUserAgent) {
  fakeSystem().information =
      @{@"CFBundleName" : @"Zantrio", @"CFBundleShortVersionString" : @"1.2.3"};
  const CAppSettings settings(new CMainBundle, "/Applications/Zantrio.app/Contents/MacOS/Zantrio");
  std::string text;
  settings.getUserAgent(text);
  EXPECT_EQ(text, "Zantrio/1.2.3 (Mac OS X 10.9.5)");
  settings.getLoadingPagePath(text);
  EXPECT_EQ(text, "/Applications/Zantrio.app/Contents/Resources/loading.html");
  fakeSystem().gestalt.erase('sys3');
  text = "untouched";
  readOsVersion(text);
  EXPECT_EQ(text, "untouched");
}

TEST_F(SettingsMac, ResolvesTheExecutablesPathOrKeepsTheFirstArgument) {
  const std::string folder = std::filesystem::temp_directory_path().string();
  fakeSystem().executablePath = folder + "/../" + folder + "/.";
  EXPECT_EQ(resolveExecutablePath("zantrio"), std::filesystem::canonical(folder).string());
  for (const char* unusable : {"/nowhere/at/all", ""}) {
    fakeSystem().executablePath = unusable;
    EXPECT_EQ(resolveExecutablePath("zantrio"), "zantrio");
  }
  EXPECT_EQ(subProcessExecutablePath("/Applications/Zantrio.app/Contents/MacOS/Zantrio"),
            "/Applications/Zantrio.app/Contents/Frameworks/Zantrio Helper.app/Contents/MacOS/"
            "Zantrio Helper");
}

class FilesMac : public MacTest {
 protected:
  static std::string urlOf(const std::string& path) {
    std::string url = "untouched";
    filePathToUrl(path, url);
    return url;
  }

  const test::TemporaryFolder folder_;
};

TEST_F(FilesMac, ConvertsPathsToPercentEncodedUrlsWithASlashAfterFolders) {
  EXPECT_EQ(urlOf("/nowhere/Zo\xC3\xAB 1.txt"), "file:///nowhere/Zo%C3%AB%201.txt");
  EXPECT_EQ(urlOf(folder_.makeFolder("sub folder")), "file://" + folder_.path() + "/sub%20folder/");
  EXPECT_EQ(urlOf(folder_.makeFile("file")), "file://" + folder_.path() + "/file");
  std::string url;
  filePathToUrl("/nowhere/a b", true, url);
  EXPECT_EQ(url, "file:///nowhere/a%20b/");
  filePathToUrl("/nowhere/a b", false, url);
  EXPECT_EQ(url, "file:///nowhere/a%20b");
}

TEST_F(FilesMac, APathThatCannotBeConvertedLeavesTheUrlAndIsLogged) {
  EXPECT_EQ(urlOf("/nowhere/\xFF"), "untouched");
  ASSERT_EQ(calls().size(), 1U);
  EXPECT_TRUE(
      calls()[0].starts_with("log: Exception occurred while trying to convert file path to url: "))
      << calls()[0];
}

TEST_F(FilesMac, AWalkGivesAFileWhoseNameCannotBeConvertedNoUrl) {
  for (const char* name : {"/a", "/\xFF", "/z"}) {
    folder_.makeFile("walked" + std::string(name));
  }
  Json::Value files(Json::arrayValue);
  const std::string root = folder_.path() + "/walked";
  CFolderWalk(files, root).walk(root);
  ASSERT_EQ(files.size(), 3U);
  for (const Json::Value& file : files) {
    const std::string name = file["name"].asString();
    const bool isConvertible = name == "a" || name == "z";
    EXPECT_EQ(file["fileURL"].asString(), isConvertible ? "file://" + root + "/" + name : "");
  }
}

TEST_F(FilesMac, ReadsTheStatusAndPermissionsFromTheFileSystem) {
  const std::string path = folder_.makeFile("file", "12345");
  test::setModified(path, 1'500'000'000'123'456'789);
  FileStatus status;
  ASSERT_EQ(readFileStatus(folder_.makeLink("link", path), status), 0);
  EXPECT_TRUE(status.isRegularFile());
  EXPECT_EQ(status.size, 5U);
  EXPECT_EQ(status.modifiedMicros, 1'500'000'000'123'456);
  EXPECT_GT(status.createdMicros, status.modifiedMicros);
  struct stat data {};
  ASSERT_EQ(stat(path.c_str(), &data), 0);
  EXPECT_EQ(status.identity.inode, data.st_ino);
  EXPECT_EQ(status.identity.device, data.st_dev);

  EXPECT_EQ(readFileStatus(folder_.path() + "/none", status), ENOENT);
  EXPECT_EQ(status.size, 5U) << "changed by a failure";
  ASSERT_EQ(readFileStatus(folder_.path(), status), 0);
  EXPECT_TRUE(status.isDirectory());

  EXPECT_EQ(createFilePermissionsRetriever()->getPermissions(path), 3);
  EXPECT_EQ(createFilePermissionsRetriever()->getPermissions(path + "none"), 0);
}

using PlatformExceptionsMac = MacTest;

struct Guard {
  ~Guard() { ended = true; }
  bool& ended;
};

TEST_F(PlatformExceptionsMac, EndTheCallAndAreLogged) {
  bool destroyed = false;
  EXPECT_FALSE(callCatchingPlatformExceptions([&destroyed] {
    const Guard guard{destroyed};
    [NSException raise:NSRangeException format:@"out of range"];
  }));
  EXPECT_TRUE(destroyed) << "the call's objects leaked";
  ASSERT_EQ(calls().size(), 1U);
  EXPECT_NE(calls()[0].find("out of range"), std::string::npos);
  EXPECT_FALSE(callCatchingPlatformExceptions([] { @throw @"any object"; }));
  EXPECT_TRUE(callCatchingPlatformExceptions([&destroyed] { destroyed = false; }));
  EXPECT_FALSE(destroyed);
}

}  // namespace
}  // namespace zantrio::mac_test
