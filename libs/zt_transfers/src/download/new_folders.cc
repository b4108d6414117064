#include "download/new_folders.h"

namespace zt_transfers {

CNewFolders& CNewFolders::shared() {
  static CNewFolders folders;
  return folders;
}

void CNewFolders::noteMade(dev_t device) {
  const std::lock_guard lock(mutex_);
  latest_[device] = ++last_;
}

std::uint64_t CNewFolders::latest(dev_t device) const {
  const std::lock_guard lock(mutex_);
  const auto found = latest_.find(device);
  return found == latest_.end() ? 0 : found->second;
}

void CNewFolders::noteSynced(dev_t device, std::uint64_t latest) {
  const std::lock_guard lock(mutex_);
  const auto found = latest_.find(device);
  if (found != latest_.end() && found->second == latest) {
    latest_.erase(found);
  }
}

}  // namespace zt_transfers
