#include "browser/loading_page.h"

#include <Poco/URI.h>

#include "app/settings/app_settings.h"

namespace zantrio {
namespace {

const std::string kFileScheme = "file://";
const std::string kUnreachableMark = "#unreachable=";
const std::string kReserved = ":/?#[]@!$&'()*+,;=";

}  // namespace

std::string loadingPageUrl(const CAppSettings& settings) {
  std::string path;
  settings.getLoadingPagePath(path);
  std::string url;
  Poco::URI::encode(kFileScheme + path, "?#", url);
  return url;
}

std::string unreachablePageUrl(const CAppSettings& settings, const std::string& appUrl) {
  std::string encoded;
  Poco::URI::encode(appUrl, kReserved, encoded);
  return loadingPageUrl(settings) + kUnreachableMark + encoded;
}

bool isUnreachablePageUrl(const std::string& url) {
  return url.compare(0, kFileScheme.size(), kFileScheme) == 0 &&
         url.find(kUnreachableMark) != std::string::npos;
}

}  // namespace zantrio
