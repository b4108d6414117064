#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <mutex>

namespace zt_transfers {

// On which file systems folders were made that may not be durable yet. They are no single file's
// matter: the one that made them may be the last to arrive, or fail, and the sync of another one
// need not keep the folders above it.
//
// Thread: any.
class CNewFolders {
 public:
  // The process's own.
  static CNewFolders& shared();

  void noteMade(dev_t device);
  // The latest that was made there; 0: all are durable.
  std::uint64_t latest(dev_t device) const;
  // A sync of all of the file system has kept those up to this one.
  void noteSynced(dev_t device, std::uint64_t latest);

 private:
  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::uint64_t last_ = 0;
  std::map<dev_t, std::uint64_t> latest_;
};

}  // namespace zt_transfers
