#include "loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <stdexcept>

namespace zt_transfers::test {

CUniqueFd listenOnLoopback(int& port) {
  CUniqueFd listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const int again = 1;
  ::setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &again, sizeof again);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  socklen_t length = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener.get(), generic, length) != 0 || ::listen(listener.get(), 128) != 0 ||
      ::getsockname(listener.get(), generic, &length) != 0) {
    throw std::runtime_error("the test's server cannot listen");
  }
  port = ntohs(address.sin_port);
  return listener;
}

}  // namespace zt_transfers::test
