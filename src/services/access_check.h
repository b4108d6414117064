#pragma once

#include <string>

namespace zantrio {

// What IFilePermissionsRetriever::getPermissions answers, by the operating system's access check.
int permissionsOfRealUser(const std::string& path);

}  // namespace zantrio
