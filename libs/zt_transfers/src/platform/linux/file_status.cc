#include "base/file_status.h"

#include <linux/magic.h>
#include <sys/vfs.h>

namespace zt_transfers {

bool liesInMemory(int file) {
  struct statfs system {};
  return ::fstatfs(file, &system) == 0 && system.f_type == TMPFS_MAGIC;
}

timespec contentChangeOf(const struct stat& status) {
  return status.st_mtim;
}

timespec lastChangeOf(const struct stat& status) {
  return status.st_ctim;
}

}  // namespace zt_transfers
