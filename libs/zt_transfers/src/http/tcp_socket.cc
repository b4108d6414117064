#include "http/tcp_socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#if defined(__linux__)
#include <linux/sockios.h>
#endif

namespace zt_transfers {
namespace {

// A peer that does not answer for this long is gone: 30 s without traffic, then six questions.
constexpr int kIdleSeconds = 30;
constexpr int kQuestionInterval = 10;  // seconds
constexpr int kQuestions = 6;

void set(int socket, int level, int option, int value) {
  ::setsockopt(socket, level, option, &value, sizeof value);
}

}  // namespace

void prepareTcpSocket(int socket) {
  set(socket, SOL_SOCKET, SO_KEEPALIVE, 1);
#if defined(__linux__)
  set(socket, IPPROTO_TCP, TCP_KEEPIDLE, kIdleSeconds);
  constexpr int kGoneAfter = (kIdleSeconds + kQuestions * kQuestionInterval) * 1000;
  set(socket, IPPROTO_TCP, TCP_USER_TIMEOUT, kGoneAfter);
#elif defined(TCP_KEEPALIVE)
  set(socket, IPPROTO_TCP, TCP_KEEPALIVE, kIdleSeconds);
#endif
#if defined(TCP_KEEPINTVL) && defined(TCP_KEEPCNT)
  set(socket, IPPROTO_TCP, TCP_KEEPINTVL, kQuestionInterval);
  set(socket, IPPROTO_TCP, TCP_KEEPCNT, kQuestions);
#endif
}

std::optional<std::uint64_t> unconfirmedBytes(int socket) {
  int bytes = 0;
#if defined(__linux__)
  const bool known = ::ioctl(socket, SIOCOUTQ, &bytes) == 0;
#elif defined(SO_NWRITE)
  socklen_t size = sizeof bytes;
  const bool known = ::getsockopt(socket, SOL_SOCKET, SO_NWRITE, &bytes, &size) == 0;
#else
  const bool known = false;
#endif
  return known ? std::optional<std::uint64_t>(bytes) : std::nullopt;
}

}  // namespace zt_transfers
