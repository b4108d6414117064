#include "http/tcp_socket.h"

#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace zt_transfers {

std::optional<std::uint64_t> unconfirmedBytes(int socket) {
  int bytes = 0;
  const bool known = ::ioctl(socket, SIOCOUTQ, &bytes) == 0;
  return known ? std::optional<std::uint64_t>(bytes) : std::nullopt;
}

void setPeerLimits(int socket, int idleSeconds, int goneAfterSeconds) {
  const int goneAfter = goneAfterSeconds * 1000;
  ::setsockopt(socket, IPPROTO_TCP, TCP_KEEPIDLE, &idleSeconds, sizeof idleSeconds);
  ::setsockopt(socket, IPPROTO_TCP, TCP_USER_TIMEOUT, &goneAfter, sizeof goneAfter);
}

}  // namespace zt_transfers
