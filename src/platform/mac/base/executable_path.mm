#include "app/settings/executable_path.h"

#include <mach-o/dyld.h>

#include <cstdint>
#include <filesystem>
#include <vector>

namespace zantrio {

std::string resolveExecutablePath(const char* argv0) {
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);  // tells the size that is needed
  std::vector<char> path(size + 1, '\0');
  if (_NSGetExecutablePath(path.data(), &size) != 0) {
    return argv0;
  }
  std::error_code error;
  const std::filesystem::path resolved = std::filesystem::canonical(path.data(), error);
  return error ? std::string(argv0) : resolved.string();
}

// An application of its own in the bundle, of which the framework starts variants for some kinds of
// processes.
std::string subProcessExecutablePath(const std::string& executablePath) {
  const std::filesystem::path contents =
      std::filesystem::path(executablePath).parent_path().parent_path();
  return (contents / "Frameworks/Zantrio Helper.app/Contents/MacOS/Zantrio Helper").string();
}

}  // namespace zantrio
