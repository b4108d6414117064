#pragma once

#include <cstdint>
#include <optional>

namespace zt_transfers {

// What the systems have each in a way of its own.

// Has the system notice a peer that is gone, and keeps its queue of unsent bytes short. A system
// that lacks an option goes without.
void prepareTcpSocket(int socket);

// Bytes that were given to the socket and are not confirmed by the peer's system. std::nullopt if
// the system does not tell.
std::optional<std::uint64_t> unconfirmedBytes(int socket);

}  // namespace zt_transfers
