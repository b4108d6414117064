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
    std::filesystem::path path = (std::filesystem::path(folder) / name).lexically_normal();
    if (name.empty() || path.is_relative()) {
      continue;
    }
    if (!path.has_filename()) {
      path = path.parent_path();  // without the slash behind a folder's name
    }
    paths.push_back(path.string());
  }
  return paths;
}

}  // namespace zantrio
