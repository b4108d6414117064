#pragma once

#include <cstdint>
#include <optional>

namespace zt_transfers {

// Has the system notice a peer that is gone, and keeps its queue of unsent bytes short. A system
// that lacks an option goes without.
void prepareTcpSocket(int socket);

// The rest is implemented by each system.

// Bytes that were given to the socket and are not confirmed by the peer's system. std::nullopt if
// the system does not tell.
std::optional<std::uint64_t> unconfirmedBytes(int socket);

// The part of prepareTcpSocket for which every system has options of its own: after how many
// seconds without traffic the peer is asked whether it is there, and after how many seconds without
// an answer the connection ends.
void setPeerLimits(int socket, int idleSeconds, int goneAfterSeconds);

}  // namespace zt_transfers
