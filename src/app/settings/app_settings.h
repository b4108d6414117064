#pragma once

#include <Poco/SharedPtr.h>

#include <string>

#include "app/settings/main_bundle.h"

namespace zantrio {

// The application's paths, names and addresses, computed on every call from the bundle's
// information dictionary and the environment.
//
// Every getter writes into the caller's text and leaves it unchanged when its source is missing.
// Thread: any. Errors: Poco::NullPointerException when there is no bundle object.
class CAppSettings {
 public:
  // `executablePath`: the path of the program's file, as resolveExecutablePath returns it.
  CAppSettings(Poco::SharedPtr<CMainBundle> bundle, std::string executablePath);

  void getHomeFolder(std::string& folder) const;
  void getAppDataFolder(std::string& folder) const;  // ends with a slash
  void getCachePath(std::string& path) const;
  void getBrowserLogPath(std::string& path) const;
  void getAppLogPath(std::string& path) const;
  void getProductName(std::string& name) const;
  void getBundleName(std::string& name) const;
  void getVersion(std::string& version) const;
  void getAppBaseUrl(std::string& url) const;
  void getAppPath(std::string& path) const;
  // Origins beside that of the base URL whose pages may use the bridges, separated by blanks.
  void getBridgeOrigins(std::string& origins) const;
  void getAppUrl(std::string& url) const;
  void getResourcesFolder(std::string& folder) const;  // ends with a slash
  void getLoadingPagePath(std::string& path) const;
  void getOsVersion(std::string& version) const;
  void getUserAgent(std::string& userAgent) const;

 private:
  void getInAppDataFolder(const std::string& name, std::string& path) const;
  // The default replaces an entry that is missing or empty, but not one of another type.
  void getOrDefault(const std::string& key, const std::string& defaultValue,
                    std::string& value) const;

  const Poco::SharedPtr<CMainBundle> bundle_;
  const std::string executablePath_;
};

}  // namespace zantrio
