#include "troubled_disk.h"

#include <cerrno>
#include <string>

namespace zt_transfers::test {

CUniqueFd CTroubledFileOps::open(int folder, const char* name) {
  ++opened;
  return CPosixFileOps::open(folder, name);
}

ssize_t CTroubledFileOps::read(int file, char* data, std::size_t size, std::uint64_t offset) {
  bytesRead += size;
  return CPosixFileOps::read(file, data, size, offset);
}

ssize_t CTroubledFileOps::write(int file, const char* data, std::size_t size,
                                std::uint64_t offset) {
  wait();
  const std::lock_guard lock(mutex_);
  unsynced_[statusOf(*this, file).st_ino].push_back({offset, size});
  return CPosixFileOps::write(file, data, size, offset);
}

bool CTroubledFileOps::syncContent(int file) {
  wait();
  return !fails(file) && CPosixFileOps::syncContent(file);
}

bool CTroubledFileOps::sync(int file) {
  return !fails(file) && CPosixFileOps::sync(file);
}

void CTroubledFileOps::wait() {
  ++waiting;
  { const std::lock_guard held(busy); }
  --waiting;
}

bool CTroubledFileOps::fails(int file) {
  const std::lock_guard lock(mutex_);
  const struct stat status = statusOf(*this, file);
  const std::vector<Unsynced> unsynced = std::exchange(unsynced_[status.st_ino], {});
  if (failingSyncs <= 0 || !S_ISREG(status.st_mode)) {
    return false;
  }
  --failingSyncs;
  for (const auto& [offset, size] : unsynced) {
    const std::string nothing(size, '\0');
    CPosixFileOps::write(file, nothing.data(), size, offset);
  }
  errno = EIO;
  return true;
}

}  // namespace zt_transfers::test
