#include <mach-o/dyld.h>

#include <cstdint>
#include <filesystem>
#include <vector>

#include "app/executable_path.h"

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

}  // namespace zantrio
