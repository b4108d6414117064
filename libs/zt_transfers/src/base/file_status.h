#pragma once

#include <sys/stat.h>

#include "base/system_failure.h"

namespace zt_transfers {

// Of an open file. Throws std::system_error.
inline struct stat statusOf(int file) {
  struct stat status {};
  if (::fstat(file, &status) != 0) {
    failWithErrno("cannot read the file's status");
  }
  return status;
}

}  // namespace zt_transfers
