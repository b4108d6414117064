#include "download/reserve_room.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#if defined(__linux__)
#include <linux/magic.h>
#include <sys/vfs.h>
#endif

#include <cerrno>
#include <system_error>

namespace zt_transfers {
namespace {

[[noreturn]] void failWithoutRoom(int error) {
  throw std::system_error(error, std::generic_category(), "cannot make room for the file");
}

bool diskHas(int file, std::uint64_t size) {
  constexpr std::uint64_t kBlock = 512;  // of st_blocks
  struct stat status {};
  struct statvfs disk {};
  if (::fstat(file, &status) != 0 || ::fstatvfs(file, &disk) != 0 || disk.f_blocks == 0) {
    return true;
  }
  const std::uint64_t has = static_cast<std::uint64_t>(status.st_blocks) * kBlock;
  return size <= has || (size - has) / disk.f_frsize <= disk.f_bavail;
}

#if defined(__linux__)
bool liesInMemory(int file) {
  struct statfs system {};
  return ::fstatfs(file, &system) == 0 && system.f_type == TMPFS_MAGIC;
}
#endif

}  // namespace

void reserveRoom(int file, std::uint64_t size) {
  // Asked first, so that nothing else runs short while the system takes all that there is.
  if (!diskHas(file, size)) {
    failWithoutRoom(ENOSPC);
  }
#if defined(__linux__)
  // Memory is not reserved but allocated, page by page, and has left the processor's cache again
  // when it is written to: a fifth more of the time of all the download.
  if (liesInMemory(file)) {
    return;
  }
  if (::fallocate(file, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) != 0 &&
      (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) {
    failWithoutRoom(errno);
  }
#endif
}

}  // namespace zt_transfers
