#pragma once

#if defined(__linux__)
#include <linux/magic.h>
#include <sys/vfs.h>
#endif

namespace zt_transfers {

// Whether the file's content is in memory only, so that no access to it waits for a disk.
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
