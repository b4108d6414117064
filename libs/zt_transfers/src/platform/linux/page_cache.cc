#include "upload/page_cache.h"

#include <fcntl.h>
#include <sys/uio.h>

namespace zt_transfers {

void expectSequentialRead(int file, std::uint64_t begin, std::uint64_t length) {
  ::posix_fadvise(file, static_cast<off_t>(begin), static_cast<off_t>(length),
                  POSIX_FADV_SEQUENTIAL);
}

ssize_t readFromMemory(int file, char* data, std::size_t size, std::uint64_t offset) {
  const iovec memory{data, size};
  return ::preadv2(file, &memory, 1, static_cast<off_t>(offset), RWF_NOWAIT);
}

}  // namespace zt_transfers
