#pragma once

#include "include/internal/cef_types_wrappers.h"

namespace zantrio {

class CAppSettings;

// Fills in the settings for initialising the framework. `settings` must know the home folder and
// the version.
void fillFrameworkSettings(const CAppSettings& settings, CefSettings& frameworkSettings);

}  // namespace zantrio
