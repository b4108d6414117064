#pragma once

#include <sys/stat.h>
#if defined(__linux__)
#include <linux/magic.h>
#include <sys/vfs.h>
#endif

#include "base/system_failure.h"

namespace zt_transfers {

// Of an open file. Throws std::system_error.
inline struct stat statusOf(int file) {
  struct stat status {};
  if (::fstat(file, &status) != 0) {
    failWithErrno("cannot read the file's status");
  }
  return status;
}

// Whether the file is on a file system without a disk (tmpfs). Access waits only where pages were
// swapped out, which cannot be known in advance.
inline bool liesInMemory(int file) {
#if defined(__linux__)
  struct statfs system {};
  return ::fstatfs(file, &system) == 0 && system.f_type == TMPFS_MAGIC;
#else
  static_cast<void>(file);
  return false;
#endif
}

}  // namespace zt_transfers
