#include "download/reserve_room.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <system_error>

#include "base/memory_file_system.h"

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

}  // namespace

void reserveRoom(int file, std::uint64_t size) {
  // Asked first, so that nothing else runs short while the system takes all that there is.
  if (!diskHas(file, size)) {
    failWithoutRoom(ENOSPC);
  }
  // Memory is not reserved but allocated, page by page, and has left the processor's cache again
  // when it is written to: a fifth more of the time of all the download.
  if (liesInMemory(file)) {
    return;
  }
#if defined(__linux__)
  if (::fallocate(file, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) != 0 &&
      (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) {
    failWithoutRoom(errno);
  }
#endif
}

}  // namespace zt_transfers
