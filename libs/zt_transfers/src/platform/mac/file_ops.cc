#include "base/file_ops.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>

namespace zt_transfers {

bool CPosixFileOps::syncContent(int file) {
  return sync(file);
}

bool CPosixFileOps::sync(int file) {
  if (::fcntl(file, F_FULLFSYNC) == 0) {
    return true;
  }
  // File systems of other machines know fsync only. On a disk it would leave the content in the
  // drive's cache.
  const bool unknown = errno == ENOTSUP || errno == EINVAL || errno == ENOTTY;
  return unknown && ::fsync(file) == 0;
}

bool CPosixFileOps::hasFileSystemSync(int /*file*/) {
  return false;
}

bool CPosixFileOps::syncFileSystem(int /*file*/) {
  errno = ENOTSUP;
  return false;
}

bool CPosixFileOps::contentWritten(int /*file*/) {
  return true;
}

// The system has no such call, and writes on its own.
void CPosixFileOps::startWriting(int /*file*/, std::uint64_t /*begin*/, std::uint64_t /*end*/) {}

bool CPosixFileOps::allocate(int file, std::uint64_t size) {
  constexpr std::uint64_t kBlock = 512;  // of st_blocks
  struct stat status {};
  if (::fstat(file, &status) != 0) {
    return false;
  }
  const std::uint64_t has = static_cast<std::uint64_t>(status.st_blocks) * kBlock;
  if (size <= has) {
    return true;
  }
  // Adds to what the file has.
  fstore_t more{};
  more.fst_flags = F_ALLOCATEALL;
  more.fst_posmode = F_PEOFPOSMODE;
  more.fst_length = static_cast<off_t>(size - has);
  return ::fcntl(file, F_PREALLOCATE, &more) == 0;
}

bool CPosixFileOps::renameExclusively(int folder, const char* from, const char* to) {
  return ::renameatx_np(folder, from, folder, to, RENAME_EXCL) == 0;
}

}  // namespace zt_transfers
