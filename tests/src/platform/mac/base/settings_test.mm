#include <unistd.h>

#include <filesystem>

#include "app/settings/app_settings.h"
#include "app/settings/executable_path.h"
#include "app/settings/os_version.h"
#include "src/platform/mac/fakes/core_foundation_fake.h"
#include "src/platform/mac/fakes/system_services_fake.h"
#include "src/platform/mac/mac_fixture.h"

namespace zantrio::mac_test {
namespace {

class SettingsMac : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    coreFoundation().information = @{
      @"CFBundleName" : @"Zantrio",
      @"CFBundleShortVersionString" : @"1.2.3",
      @"AppBaseUrl" : @"",
      @"AppPath" : [NSNumber numberWithInt:5],
    };
    systemServices().gestalt = {{'sys1', 10}, {'sys2', 9}, {'sys3', 5}};
  }

  static std::string entry(const char* key) {
    std::string value = "untouched";
    CMainBundle().getString(key, value);
    return value;
  }

  static std::string osVersion() {
    std::string version = "untouched";
    readOsVersion(version);
    return version;
  }
};

TEST_F(SettingsMac, ReadsTheMainBundlesStringsAndNothingElse) {
  EXPECT_EQ(entry("CFBundleName"), "Zantrio");
  EXPECT_EQ(entry("AppBaseUrl"), "");
  EXPECT_EQ(entry("AppPath"), "untouched");
  EXPECT_EQ(entry("Missing"), "untouched");
  EXPECT_TRUE(CMainBundle().hasEntry("AppPath"));
  EXPECT_FALSE(CMainBundle().hasEntry("Missing"));
  EXPECT_EQ(CMainBundle().error(), "");
}

TEST_F(SettingsMac, WithoutABundleThereIsNoEntryButAnError) {
  coreFoundation().hasMainBundle = false;
  EXPECT_EQ(entry("CFBundleName"), "untouched");
  EXPECT_FALSE(CMainBundle().hasEntry("CFBundleName"));
  EXPECT_NE(CMainBundle().error(), "");
}

TEST_F(SettingsMac, ABundleElsewhereIsTheOneInItsFolder) {
  std::string name;
  EXPECT_TRUE(CMainBundle("/Applications/Zantrio.app").getString("CFBundleName", name));
  EXPECT_EQ(coreFoundation().createdBundle, "/Applications/Zantrio.app");
}

TEST_F(SettingsMac, TakesAStringFromItsOwnBufferWhereThereIsOne) {
  coreFoundation().offersOwnBuffer = true;
  coreFoundation().systemEncoding = kCFStringEncodingUTF8;
  EXPECT_EQ(entry("CFBundleShortVersionString"), "1.2.3");
  EXPECT_EQ(coreFoundation().ownBufferAskedIn,
            std::vector<CFStringEncoding>{kCFStringEncodingUTF8});
  EXPECT_TRUE(coreFoundation().copiedIn.empty());
}

TEST_F(SettingsMac, CopiesAStringInTheSystemsEncodingOtherwise) {
  coreFoundation().information = @{
    @"CFBundleName" : @"Zo\u00EB",
    @"AppPath" : @"\u4E2D",
  };
  EXPECT_EQ(entry("CFBundleName"), "Zo\x91") << "in Mac Roman";
  EXPECT_EQ(entry("AppPath"), "untouched") << "not in Mac Roman";
  EXPECT_EQ(coreFoundation().copiedIn,
            (std::vector<CFStringEncoding>{kCFStringEncodingMacRoman, kCFStringEncodingMacRoman}));
}

TEST_F(SettingsMac, TheUserAgentNamesTheSystemsRelease) {
  EXPECT_EQ(osVersion(), "Mac OS X 10.9.5");
  const CAppSettings settings(new CMainBundle, "/Applications/Zantrio.app/Contents/MacOS/Zantrio");
  std::string text;
  settings.getUserAgent(text);
  EXPECT_EQ(text, "Zantrio/1.2.3 (Mac OS X 10.9.5)");
  settings.getLoadingPagePath(text);
  EXPECT_EQ(text, "/Applications/Zantrio.app/Contents/Resources/loading.html");
}

TEST_F(SettingsMac, AReleaseThatTheSystemDoesNotTellIsLeftAsItWas) {
  systemServices().gestalt.erase('sys3');
  EXPECT_EQ(osVersion(), "untouched");
}

TEST_F(SettingsMac, TheExecutablesPathIsResolvedAndElseAsItWasCalled) {
  const std::string folder = std::filesystem::temp_directory_path().string();
  systemServices().executablePath = folder + "/../" + folder + "/.";
  EXPECT_EQ(resolveExecutablePath("zantrio"), std::filesystem::canonical(folder).string());
  systemServices().executablePath = "/nowhere/at/all";
  EXPECT_EQ(resolveExecutablePath("zantrio"), "zantrio");
  systemServices().executablePath = "";
  EXPECT_EQ(resolveExecutablePath("zantrio"), "zantrio");
}

TEST_F(SettingsMac, SubProcessesRunInTheHelperApplication) {
  EXPECT_EQ(subProcessExecutablePath("/Applications/Zantrio.app/Contents/MacOS/Zantrio"),
            "/Applications/Zantrio.app/Contents/Frameworks/Zantrio Helper.app/Contents/MacOS/"
            "Zantrio Helper");
}

}  // namespace
}  // namespace zantrio::mac_test
