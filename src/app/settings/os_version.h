#pragma once

#include <string>

namespace zantrio {

// The operating system's name and version, as in "Linux 6.1.0": major, minor and bug-fix number.
// Leaves `version` unchanged when the system does not provide it. Thread: any. Implemented by each
// platform.
void readOsVersion(std::string& version);

}  // namespace zantrio
