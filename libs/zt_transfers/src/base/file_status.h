#pragma once

#include <sys/stat.h>

#include <ctime>

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

// The rest is implemented by each system.

// Whether the file is on a file system without a disk (tmpfs). Access waits only where pages were
// swapped out, which cannot be known in advance.
bool liesInMemory(int file);

// The time of the last change of a file's content, and of its content or attributes.
timespec contentChangeOf(const struct stat& status);
timespec lastChangeOf(const struct stat& status);

}  // namespace zt_transfers
