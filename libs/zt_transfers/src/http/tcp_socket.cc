#include "http/tcp_socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

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
  set(socket, IPPROTO_TCP, TCP_KEEPINTVL, kQuestionInterval);
  set(socket, IPPROTO_TCP, TCP_KEEPCNT, kQuestions);
  setPeerLimits(socket, kIdleSeconds, kIdleSeconds + kQuestions * kQuestionInterval);
}

}  // namespace zt_transfers
