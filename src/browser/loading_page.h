#pragma once

#include <string>

namespace zantrio {

class CAppSettings;

// The URL of the bundle's loading page.
std::string loadingPageUrl(const CAppSettings& settings);

// The URL of the loading page when the web application at `appUrl` is unreachable: the page says so
// and loads `appUrl` when its button is pressed.
std::string unreachablePageUrl(const CAppSettings& settings, const std::string& appUrl);
bool isUnreachablePageUrl(const std::string& url);

}  // namespace zantrio
