#pragma once

#if defined(__linux__)
#include <linux/magic.h>
#include <sys/vfs.h>
#endif

namespace zt_transfers {

// Whether the file's content has no disk of its own (tmpfs). An access to it waits only where pages
// were swapped out, and nothing tells that before.
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
