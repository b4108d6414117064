#include "http/tcp_socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace zt_transfers {

std::optional<std::uint64_t> unconfirmedBytes(int socket) {
  int bytes = 0;
  socklen_t size = sizeof bytes;
  const bool known = ::getsockopt(socket, SOL_SOCKET, SO_NWRITE, &bytes, &size) == 0;
  return known ? std::optional<std::uint64_t>(bytes) : std::nullopt;
}

void setPeerLimits(int socket, int idleSeconds, int goneAfterSeconds) {
  ::setsockopt(socket, IPPROTO_TCP, TCP_KEEPALIVE, &idleSeconds, sizeof idleSeconds);
  ::setsockopt(socket, IPPROTO_TCP, TCP_RXT_CONNDROPTIME, &goneAfterSeconds,
               sizeof goneAfterSeconds);
}

}  // namespace zt_transfers
