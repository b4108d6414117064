#include "store/database_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <system_error>

namespace zt_transfers {

std::optional<CDatabaseLock> CDatabaseLock::take(const std::string& path) {
  CUniqueFd file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!file.valid()) {
    throw std::system_error(errno, std::generic_category(), "opening " + path);
  }
  if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
    return CDatabaseLock(std::move(file));
  }
  if (errno == EWOULDBLOCK) {
    return std::nullopt;
  }
  throw std::system_error(errno, std::generic_category(), "locking " + path);
}

}  // namespace zt_transfers
