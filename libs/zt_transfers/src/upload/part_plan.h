#pragma once

#include <cstdint>

namespace zt_transfers {

// The size of the parts in which a file of `size` bytes is sent. `wanted` is what the page asks
// for, 0: to be chosen; it is raised where it would take more parts than a server accepts.
std::uint64_t partSizeFor(std::uint64_t size, std::uint64_t wanted);

}  // namespace zt_transfers
