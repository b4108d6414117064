#include "app/settings/app_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "app/framework_settings.h"
#include "src/fakes/test_bundle.h"

namespace zantrio {
namespace {

using test::ScopedHome;
using test::TestBundle;

using Getter = void (CAppSettings::*)(std::string&) const;

std::string value(const CAppSettings& settings, Getter getter) {
  std::string text = "(untouched)";
  (settings.*getter)(text);
  return text;
}

class Settings : public testing::Test {
 protected:
  CAppSettings settings(const std::string& entries) {
    bundle_.writeInfo(entries);
    return {new CMainBundle(bundle_.folder()), "/Applications/My App/Contents/MacOS/Zantrio"};
  }
  std::string value(const std::string& entries, Getter getter) {
    return zantrio::value(settings(entries), getter);
  }

 private:
  TestBundle bundle_;
};

TEST_F(Settings, ComposesFoldersBelowHomeWithTheDoubledSlash) {
  const ScopedHome home("/home/me");
  const CAppSettings app = settings("");
  EXPECT_EQ(zantrio::value(app, &CAppSettings::getHomeFolder), "/home/me");
  const std::string data = "/home/me/Library/Application Support/Zantrio CEF/";
  EXPECT_EQ(zantrio::value(app, &CAppSettings::getAppDataFolder), data);
  EXPECT_EQ(zantrio::value(app, &CAppSettings::getCachePath), data + "/Cache");
  EXPECT_EQ(zantrio::value(app, &CAppSettings::getBrowserLogPath), data + "/cef_browser.log");
  EXPECT_EQ(zantrio::value(app, &CAppSettings::getAppLogPath), data + "/zt_app.log");
}

TEST_F(Settings, TakesTheUserDatabasesHomeWhenTheEnvironmentHasNone) {
  const ScopedHome home(nullptr);
  const std::string folder = value("", &CAppSettings::getHomeFolder);
  ASSERT_FALSE(folder.empty());
  EXPECT_EQ(folder[0], '/');
}

TEST_F(Settings, ReadTheBundleAndItsPlace) {
  const std::string text =
      "<key>CFBundleName</key><string>Zäntrio &amp; Co</string>"
      "<key>CFBundleShortVersionString</key><string>1.2.3</string>"
      "<key>AppBaseUrl</key><string>http://127.0.0.1:80</string>"
      "<key>AppPath</key><string>/other</string>";
  const std::string empty =
      "<key>AppBaseUrl</key><string></string><key>AppPath</key><string></string>";
  const std::string otherTypes =
      "<key>CFBundleName</key><integer>5</integer>"
      "<key>CFBundleShortVersionString</key><true/>"
      "<key>AppBaseUrl</key><array/><key>AppPath</key><integer>1</integer>";
  const std::string untouched = "(untouched)";
  const std::tuple<std::string, Getter, std::string> cases[] = {
      {text, &CAppSettings::getProductName, "Zantrio"},
      {text, &CAppSettings::getBundleName, "Zäntrio & Co"},
      {text, &CAppSettings::getVersion, "1.2.3"},
      {text, &CAppSettings::getAppBaseUrl, "http://127.0.0.1:80"},
      {text, &CAppSettings::getAppPath, "/other"},
      {text, &CAppSettings::getAppUrl, "http://127.0.0.1:80/other"},
      {empty, &CAppSettings::getAppPath, "/app"},
      {otherTypes, &CAppSettings::getBundleName, untouched},
      {otherTypes, &CAppSettings::getVersion, untouched},
      {otherTypes, &CAppSettings::getAppBaseUrl, untouched},
      {otherTypes, &CAppSettings::getAppPath, untouched},
      {otherTypes, &CAppSettings::getAppUrl, untouched},
      {"", &CAppSettings::getResourcesFolder, "/Applications/My App/Contents/Resources/"},
      {"", &CAppSettings::getLoadingPagePath,
       "/Applications/My App/Contents/Resources/loading.html"},
  };
  for (const auto& [entries, getter, expected] : cases) {
    EXPECT_EQ(value(entries, getter), expected) << entries;
  }
  for (const std::string& entries : {std::string(), empty}) {
    const std::string base = value(entries, &CAppSettings::getAppBaseUrl);
    EXPECT_TRUE(base.starts_with("https://")) << base;
    EXPECT_EQ(value(entries, &CAppSettings::getAppUrl), base + "/app");
  }
}

TEST_F(Settings, ComposeTheUserAgentFromProductVersionAndSystem) {
  const CAppSettings app = settings("<key>CFBundleShortVersionString</key><string>1.2.3</string>");
  const std::string system = zantrio::value(app, &CAppSettings::getOsVersion);
  EXPECT_THAT(system, testing::MatchesRegex("Linux [0-9]+[.][0-9]+[.][0-9]+"));
  EXPECT_EQ(zantrio::value(app, &CAppSettings::getUserAgent), "Zantrio/1.2.3 (" + system + ")");
}

TEST_F(Settings, ReachTheFramework) {
  const ScopedHome home("/home/me");
  const CAppSettings app = settings("<key>CFBundleShortVersionString</key><string>1</string>");
  CefSettings framework;
  fillFrameworkSettings(app, framework);
  const std::string cache = "/home/me/Library/Application Support/Zantrio CEF//Cache";
  EXPECT_EQ(CefString(&framework.cache_path).ToString(), cache);
  EXPECT_EQ(CefString(&framework.root_cache_path).ToString(), cache);
  EXPECT_EQ(CefString(&framework.log_file).ToString(),
            "/home/me/Library/Application Support/Zantrio CEF//cef_browser.log");
  EXPECT_EQ(CefString(&framework.user_agent).ToString().find("Zantrio/1 (Linux "), 0U);
  EXPECT_TRUE(framework.persist_session_cookies);
}

TEST(MainBundle, SaysWhatIsWrongWithItsInformationFile) {
  TestBundle folder;
  EXPECT_NE(CMainBundle(folder.folder()).error().find("cannot be opened"), std::string::npos);
  for (const char* text : {"", "no property list", "<plist version=\"1.0\"><array/></plist>"}) {
    folder.makeFile("Info.plist", text);
    const CMainBundle bundle(folder.folder());
    EXPECT_NE(bundle.error().find("is not a property list dictionary"), std::string::npos) << text;
    EXPECT_FALSE(bundle.hasEntry("AppPath"));
  }
  folder.writeInfo("");
  EXPECT_EQ(CMainBundle(folder.folder()).error(), "");
}

}  // namespace
}  // namespace zantrio
