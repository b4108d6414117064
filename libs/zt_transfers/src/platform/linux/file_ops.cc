#include "base/file_ops.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <stdio.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace zt_transfers {

bool CPosixFileOps::syncContent(int file) {
  return ::fdatasync(file) == 0;
}

bool CPosixFileOps::sync(int file) {
  return ::fsync(file) == 0;
}

bool CPosixFileOps::hasFileSystemSync(int file) {
  constexpr long kZfs = 0x2FC12FC1;  // not in the kernel's headers
  constexpr std::array kLocal = std::to_array<long>(
      {EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC, kZfs, TMPFS_MAGIC});
  struct statfs system {};
  return ::fstatfs(file, &system) == 0 &&
         std::find(kLocal.begin(), kLocal.end(), static_cast<long>(system.f_type)) != kLocal.end();
}

bool CPosixFileOps::syncFileSystem(int file) {
  return ::syncfs(file) == 0;
}

bool CPosixFileOps::contentWritten(int file) {
  // syncfs reports only errors since its descriptor was opened, so each file is checked too. Once
  // everything is written, this call does not wait.
  return ::sync_file_range(file, 0, 0, SYNC_FILE_RANGE_WAIT_BEFORE) == 0;
}

void CPosixFileOps::startWriting(int file, std::uint64_t begin, std::uint64_t end) {
  ::sync_file_range(file, static_cast<off_t>(begin), static_cast<off_t>(end - begin),
                    SYNC_FILE_RANGE_WRITE);
}

bool CPosixFileOps::allocate(int file, std::uint64_t size) {
  return ::fallocate(file, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) == 0;
}

bool CPosixFileOps::renameExclusively(int folder, const char* from, const char* to) {
  return ::renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0;
}

}  // namespace zt_transfers
