#pragma once

#include <Poco/Path.h>

#include <string>

namespace zantrio {

// The last component: the file name, or for a path written with a trailing "/" the last directory.
// Empty for the root.
std::string lastComponent(const Poco::Path& path);

// The name of the folder that the item lies in; empty for an item in the root.
std::string parentFolderName(const Poco::Path& path);

// Whether the item's name begins with ".".
bool isHidden(const Poco::Path& path);

}  // namespace zantrio
