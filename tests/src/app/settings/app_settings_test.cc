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

TEST_F(Settings, FindsResourcesBesideTheExecutablesFolder) {
  EXPECT_EQ(value("", &CAppSettings::getResourcesFolder),
            "/Applications/My App/Contents/Resources/");
  EXPECT_EQ(value("", &CAppSettings::getLoadingPagePath),
            "/Applications/My App/Contents/Resources/loading.html");
}

TEST_F(Settings, ReadsStringsFromTheBundle) {
  const std::string entries =
      "<key>CFBundleName</key><string>Zäntrio &amp; Co</string>"
      "<key>CFBundleShortVersionString</key><string>1.2.3</string>"
      "<key>AppBaseUrl</key><string>http://127.0.0.1:80</string>"
      "<key>AppPath</key><string>/other</string>";
  EXPECT_EQ(value(entries, &CAppSettings::getProductName), "Zantrio");
  EXPECT_EQ(value(entries, &CAppSettings::getBundleName), "Zäntrio & Co");
  EXPECT_EQ(value(entries, &CAppSettings::getVersion), "1.2.3");
  EXPECT_EQ(value(entries, &CAppSettings::getAppBaseUrl), "http://127.0.0.1:80");
  EXPECT_EQ(value(entries, &CAppSettings::getAppPath), "/other");
  EXPECT_EQ(value(entries, &CAppSettings::getAppUrl), "http://127.0.0.1:80/other");
}

TEST_F(Settings, DefaultsServiceAddressesThatAreEmptyOrMissing) {
  for (const char* entries : {"",
                              "<key>AppBaseUrl</key><string></string>"
                              "<key>AppPath</key><string></string>"}) {
    EXPECT_EQ(value(entries, &CAppSettings::getAppPath), "/app");
    EXPECT_EQ(value(entries, &CAppSettings::getAppBaseUrl).find("https://"), 0U);
    EXPECT_EQ(value(entries, &CAppSettings::getAppUrl),
              value(entries, &CAppSettings::getAppBaseUrl) + "/app");
  }
}

TEST_F(Settings, LeaveTheTextAloneForEntriesThatAreNoStrings) {
  const std::string entries =
      "<key>CFBundleName</key><integer>5</integer>"
      "<key>CFBundleShortVersionString</key><true/>"
      "<key>AppBaseUrl</key><array/><key>AppPath</key><integer>1</integer>";
  for (const Getter getter :
       {&CAppSettings::getBundleName, &CAppSettings::getVersion, &CAppSettings::getAppBaseUrl,
        &CAppSettings::getAppPath, &CAppSettings::getAppUrl}) {
    EXPECT_EQ(value(entries, getter), "(untouched)");
  }
}

TEST_F(Settings, ComposeTheUserAgentFromProductVersionAndSystem) {
  const CAppSettings app = settings("<key>CFBundleShortVersionString</key><string>1.2.3</string>");
  const std::string system = zantrio::value(app, &CAppSettings::getOsVersion);
  EXPECT_THAT(system, testing::MatchesRegex("Linux [0-9]+[.][0-9]+[.][0-9]+"));
  EXPECT_EQ(zantrio::value(app, &CAppSettings::getUserAgent), "Zantrio/1.2.3 (" + system + ")");
}

TEST_F(Settings, ThrowWithoutABundle) {
  const CAppSettings app(nullptr, "/bin/zantrio");
  std::string text;
  EXPECT_THROW(app.getVersion(text), Poco::NullPointerException);
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
  EXPECT_EQ(framework.log_severity, LOGSEVERITY_INFO);
  EXPECT_TRUE(framework.persist_session_cookies);
  EXPECT_FALSE(framework.multi_threaded_message_loop);
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
