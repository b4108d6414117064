#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

namespace zt_transfers {

// Both are implemented by each system.

// Tells the system that these bytes of an open file will be read from the first to the last.
void expectSequentialRead(int file, std::uint64_t begin, std::uint64_t length);

// Reads at `offset` as pread does, but never waits for a disk. -1 if the bytes are not in the page
// cache, or the system cannot tell.
ssize_t readFromMemory(int file, char* data, std::size_t size, std::uint64_t offset);

}  // namespace zt_transfers
