#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <string>
#include <system_error>
#include <vector>

#include "base/file_ops.h"
#include "base/mutex.h"
#include "base/unique_fd.h"

namespace zt_transfers {

enum class MissingFolders { kMake, kFail };

// The group's own folder is missing, and may come back.
class CFolderGone : public std::system_error {
 public:
  using std::system_error::system_error;
};

// Opens a folder below a group's own, name by name, so that no symbolic link on the way can lead
// out of it. The group's folder itself may be anything the user chose. New folders are recorded in
// CNewFolders. Throws std::system_error. The group's folder is created only if its parent exists:
// otherwise its disk is probably not mounted, and CFolderGone is thrown.
CUniqueFd openTargetFolder(IFileOps& ops, const std::string& groupFolder,
                           const std::vector<std::string>& folders, MissingFolders missing);

// The file systems on which folders were created that may not be durable yet. This is not the
// matter of one file: the file that created a folder may finish last, or fail, and syncing another
// file need not make the folders above it durable.
//
// Thread: any.
class CNewFolders {
 public:
  // The process's own.
  static CNewFolders& shared();

  void noteMade(dev_t device);
  // The latest folder that was created there; 0: all are durable.
  std::uint64_t latest(dev_t device) const;
  // A sync of the whole file system has made folders up to this one durable.
  void noteSynced(dev_t device, std::uint64_t latest);

 private:
  mutable CMutex mutex_;
  std::uint64_t last_ GUARDED_BY(mutex_) = 0;
  std::map<dev_t, std::uint64_t> latest_ GUARDED_BY(mutex_);
};

}  // namespace zt_transfers
