#pragma once

#include <cstdint>
#include <string>

namespace zt_transfers {

// Both are implemented by each system.

// Names the calling thread for debuggers and for the log; at most 15 bytes are kept.
void nameThisThread(const std::string& name);

// The number by which the system's tools know the calling thread.
std::uint64_t thisThreadId();

}  // namespace zt_transfers
