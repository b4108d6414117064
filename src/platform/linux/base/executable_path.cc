#include "app/settings/executable_path.h"

#include <filesystem>

namespace zantrio {

std::string resolveExecutablePath(const char* argv0) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string(argv0) : path.string();
}

// Beside the program's own file.
std::string subProcessExecutablePath(const std::string& executablePath) {
  return std::filesystem::path(executablePath).replace_filename("zantrio-process").string();
}

}  // namespace zantrio
