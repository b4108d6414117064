#pragma once

#include <string>

namespace zantrio {

class CAppSettings;

// The address of the bundle's loading page.
std::string loadingPageUrl(const CAppSettings& settings);

// The loading page, told that the web application at `appUrl` cannot be reached; it says so and
// goes there when its button is pressed.
std::string unreachablePageUrl(const CAppSettings& settings, const std::string& appUrl);
bool isUnreachablePageUrl(const std::string& url);

}  // namespace zantrio
