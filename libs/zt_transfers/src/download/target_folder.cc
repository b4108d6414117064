#include "download/target_folder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "base/system_failure.h"

namespace zt_transfers {
namespace {

using Links = IFileOps::Links;

[[noreturn]] void failGone() {
  throw CFolderGone(ENOENT, std::generic_category(),
                    "the group's folder is not there; its disk may not be mounted");
}

// Of a folder in which another one was made. Where no sync of the whole file system will make the
// new one durable, this one is synced at once.
void noteMade(IFileOps& ops, int parent) {
  struct stat status {};
  if (!ops.hasFileSystemSync(parent)) {
    if (!ops.sync(parent) && errno != EINVAL && errno != EROFS) {
      failWithErrno("cannot write the folder to disk");
    }
  } else if (ops.status(parent, status)) {
    CNewFolders::shared().noteMade(status.st_dev);
  }
}

CUniqueFd openParent(IFileOps& ops, const std::string& path) {
  const std::string parent =
      std::filesystem::path(path + "/.").parent_path().parent_path().string();
  return ops.openFolder(AT_FDCWD, parent.empty() ? "." : parent.c_str(), Links::kFollow);
}

CUniqueFd openGroupFolder(IFileOps& ops, const std::string& path, bool mayMake) {
  CUniqueFd folder = ops.openFolder(AT_FDCWD, path.c_str(), Links::kFollow);
  if (!folder.valid() && errno == ENOENT && mayMake) {
    const bool made = ops.makeFolder(AT_FDCWD, path.c_str());
    if (!made && errno != EEXIST && errno != ENOENT) {
      failWithErrno("cannot make the group's folder");
    }
    if (const CUniqueFd parent = openParent(ops, path); made && parent.valid()) {
      noteMade(ops, parent.get());
    }
    folder = ops.openFolder(AT_FDCWD, path.c_str(), Links::kFollow);
  }
  if (!folder.valid() && errno == ENOENT) {
    failGone();
  }
  if (!folder.valid()) {
    failWithErrno("cannot open the group's folder");
  }
  return folder;
}

void make(IFileOps& ops, int parent, const std::string& name) {
  if (ops.makeFolder(parent, name.c_str())) {
    noteMade(ops, parent);
  } else if (errno != EEXIST) {
    failWithErrno("cannot make the folder \"" + name + "\"");
  }
}

}  // namespace

CUniqueFd openTargetFolder(IFileOps& ops, const std::string& groupFolder,
                           const std::vector<std::string>& folders, MissingFolders missing) {
  const bool mayMake = missing == MissingFolders::kMake;
  CUniqueFd folder = openGroupFolder(ops, groupFolder, mayMake);
  for (const std::string& name : folders) {
    const int parent = folder.get();
    CUniqueFd next = ops.openFolder(parent, name.c_str(), Links::kRefuse);
    if (!next.valid() && errno == ENOENT && mayMake) {
      make(ops, parent, name);
      next = ops.openFolder(parent, name.c_str(), Links::kRefuse);
    }
    if (!next.valid()) {
      failWithErrno("cannot open the folder \"" + name + "\" below the group's");
    }
    folder = std::move(next);
  }
  return folder;
}

CNewFolders& CNewFolders::shared() {
  static CNewFolders folders;
  return folders;
}

void CNewFolders::noteMade(dev_t device) {
  const CMutexLock lock(mutex_);
  latest_[device] = ++last_;
}

std::uint64_t CNewFolders::latest(dev_t device) const {
  const CMutexLock lock(mutex_);
  const auto found = latest_.find(device);
  return found == latest_.end() ? 0 : found->second;
}

void CNewFolders::noteSynced(dev_t device, std::uint64_t latest) {
  const CMutexLock lock(mutex_);
  const auto found = latest_.find(device);
  if (found != latest_.end() && found->second == latest) {
    latest_.erase(found);
  }
}

}  // namespace zt_transfers
