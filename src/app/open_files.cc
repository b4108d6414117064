#include "app/open_files.h"

#include <filesystem>
#include <system_error>

namespace zantrio {

std::string workingFolder() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::current_path(error);
  return error ? std::string() : folder.string();
}

std::vector<std::string> absolutePaths(const std::vector<std::string>& names,
                                       const std::string& folder) {
  std::vector<std::string> paths;
  paths.reserve(names.size());
  for (const std::string& name : names) {
    paths.push_back((std::filesystem::path(folder) / name).lexically_normal().string());
  }
  return paths;
}

}  // namespace zantrio
