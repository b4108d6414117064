#pragma once

#include <string>

namespace zantrio {

// The absolute path of the running program's file, symbolic links resolved; `argv0` when the
// system does not tell. Implemented by each platform.
std::string resolveExecutablePath(const char* argv0);

}  // namespace zantrio
