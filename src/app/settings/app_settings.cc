#include "app/settings/app_settings.h"

#include <Poco/Path.h>

#include <utility>

#include "app/settings/home_folder.h"
#include "app/settings/os_version.h"

namespace zantrio {
namespace {

const std::string kProductName = "Zantrio";
const std::string kDefaultAppBaseUrl = "https://www.zantrio.com";
const std::string kDefaultAppPath = "/app";

}  // namespace

CAppSettings::CAppSettings(Poco::SharedPtr<CMainBundle> bundle, std::string executablePath)
    : bundle_(std::move(bundle)), executablePath_(std::move(executablePath)) {}

void CAppSettings::getHomeFolder(std::string& folder) const {
  readHomeFolder(folder);
}

void CAppSettings::getAppDataFolder(std::string& folder) const {
  std::string home;
  getHomeFolder(home);
  if (!home.empty()) {
    folder = home + "/Library/Application Support/Zantrio CEF/";
  }
}

// The result has two slashes, one of the folder and one of the name, which the file system treats
// as one.
void CAppSettings::getCachePath(std::string& path) const {
  getInAppDataFolder("/Cache", path);
}

void CAppSettings::getBrowserLogPath(std::string& path) const {
  getInAppDataFolder("/cef_browser.log", path);
}

void CAppSettings::getAppLogPath(std::string& path) const {
  getInAppDataFolder("/zt_app.log", path);
}

void CAppSettings::getInAppDataFolder(const std::string& name, std::string& path) const {
  std::string folder;
  getAppDataFolder(folder);
  if (!folder.empty()) {
    path = folder + name;
  }
}

void CAppSettings::getProductName(std::string& name) const {
  name = kProductName;
}

void CAppSettings::getBundleName(std::string& name) const {
  bundle_->getString("CFBundleName", name);
}

void CAppSettings::getVersion(std::string& version) const {
  bundle_->getString("CFBundleShortVersionString", version);
}

void CAppSettings::getAppBaseUrl(std::string& url) const {
  getOrDefault("AppBaseUrl", kDefaultAppBaseUrl, url);
}

void CAppSettings::getAppPath(std::string& path) const {
  getOrDefault("AppPath", kDefaultAppPath, path);
}

void CAppSettings::getBridgeOrigins(std::string& origins) const {
  bundle_->getString("BridgeOrigins", origins);
}

void CAppSettings::getOrDefault(const std::string& key, const std::string& defaultValue,
                                std::string& value) const {
  if (!bundle_->hasEntry(key)) {
    value = defaultValue;
    return;
  }
  std::string entry;
  if (bundle_->getString(key, entry)) {
    value = entry.empty() ? defaultValue : entry;
  }
}

void CAppSettings::getAppUrl(std::string& url) const {
  std::string whole;
  getAppBaseUrl(whole);
  if (!whole.empty()) {
    std::string path;
    getAppPath(path);
    url = whole + path;
  }
}

void CAppSettings::getResourcesFolder(std::string& folder) const {
  Poco::Path path(executablePath_);
  path.makeParent();  // drops the file's name
  path.makeParent();
  path.pushDirectory("Resources");
  folder = path.toString();
}

void CAppSettings::getLoadingPagePath(std::string& path) const {
  std::string folder;
  getResourcesFolder(folder);
  path = folder + "loading.html";
}

void CAppSettings::getOsVersion(std::string& version) const {
  readOsVersion(version);
}

void CAppSettings::getUserAgent(std::string& userAgent) const {
  std::string product;
  std::string version;
  std::string system;
  getProductName(product);
  getVersion(version);
  getOsVersion(system);
  userAgent = product + "/" + version + " (" + system + ")";
}

}  // namespace zantrio
