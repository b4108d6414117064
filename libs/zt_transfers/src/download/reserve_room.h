#pragma once

#include <cstdint>

namespace zt_transfers {

// Reserves the room that `size` bytes of `file` will need, so that a full disk is told before it is
// full. The file's length stays that of its content. Throws std::system_error when there is no
// room.
void reserveRoom(int file, std::uint64_t size);

}  // namespace zt_transfers
