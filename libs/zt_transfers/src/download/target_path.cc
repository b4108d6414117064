#include "download/target_path.h"

#include <stdexcept>

namespace zt_transfers {
namespace {

constexpr std::size_t kLongestName = 255;  // bytes

void check(std::string_view name) {
  if (name.empty()) {
    throw std::invalid_argument("its path has an empty name in it");
  }
  if (name == "." || name == "..") {
    throw std::invalid_argument("its path has a name of dots only in it");
  }
  if (name.size() > kLongestName) {
    throw std::invalid_argument("its path has a name of more than 255 bytes in it");
  }
}

}  // namespace

TargetPath parseTargetPath(std::string_view path) {
  if (path.empty()) {
    throw std::invalid_argument("it has no path");
  }
  if (path.front() == '/') {
    throw std::invalid_argument("its path is absolute");
  }
  if (path.find('\0') != std::string_view::npos) {
    throw std::invalid_argument("its path has a NUL in it");
  }
  TargetPath target;
  for (auto slash = path.find('/'); slash != std::string_view::npos; slash = path.find('/')) {
    check(path.substr(0, slash));
    target.folders.emplace_back(path.substr(0, slash));
    path.remove_prefix(slash + 1);
  }
  check(path);
  target.name = path;
  return target;
}

}  // namespace zt_transfers
