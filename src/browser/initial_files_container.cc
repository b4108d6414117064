#include "browser/initial_files_container.h"

namespace zantrio {

CInitialFilesContainer& CInitialFilesContainer::instance() {
  static CInitialFilesContainer container;
  return container;
}

void CInitialFilesContainer::set(const std::vector<std::string>& paths, bool complete, bool defer) {
  files_ = paths;
  complete_ = complete;
  defer_ = defer;
}

void CInitialFilesContainer::append(const std::vector<std::string>& paths) {
  files_.insert(files_.end(), paths.begin(), paths.end());
}

}  // namespace zantrio
