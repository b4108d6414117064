#include "files/path_names.h"

namespace zantrio {
namespace {

std::string lastDirectory(const Poco::Path& path) {
  return path.depth() == 0 ? std::string() : path.directory(path.depth() - 1);
}

}  // namespace

std::string lastComponent(const Poco::Path& path) {
  return path.getFileName().empty() ? lastDirectory(path) : path.getFileName();
}

std::string parentFolderName(const Poco::Path& path) {
  return lastDirectory(path.parent());
}

bool isHidden(const Poco::Path& path) {
  return lastComponent(path).starts_with('.');
}

}  // namespace zantrio
