#pragma once

#include <string>

namespace zantrio {

// The absolute path of the running program's file, with symbolic links resolved; `argv0` when the
// system does not provide it. Implemented by each platform.
std::string resolveExecutablePath(const char* argv0);

// The executable for the framework's sub-processes, in the bundle of the program's file
// `executablePath`. Implemented by each platform.
std::string subProcessExecutablePath(const std::string& executablePath);

}  // namespace zantrio
