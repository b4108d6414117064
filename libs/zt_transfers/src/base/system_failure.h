#pragma once

#include <cerrno>
#include <string>
#include <system_error>

namespace zt_transfers {

// Throws std::system_error for what the last system call has left in errno; `what` says what
// cannot be done.
[[noreturn]] inline void failWithErrno(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace zt_transfers
