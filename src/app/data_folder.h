#pragma once

#include <string>
#include <system_error>

namespace zantrio {

// Creates the application's data folder if it is missing, and lets only its owner use it and what
// is directly in it, whoever made it and whatever the mask of new files is: logs and databases
// contain the user's credentials. Symbolic links in it are left alone. A file system that keeps no
// permissions is no error. Returns the error of the creation, or of the folder that cannot be
// written.
std::error_code prepareDataFolder(const std::string& folder);

}  // namespace zantrio
