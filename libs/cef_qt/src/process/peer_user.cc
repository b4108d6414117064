#include "process/peer_user.h"

#include <sys/socket.h>
#include <sys/types.h>
#include <unistd.h>

namespace cef_qt {

bool isOfThisUser(int socket) {
#if defined(__linux__)
  ucred peer{};
  socklen_t size = sizeof peer;
  return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
#else
  uid_t user = 0;
  gid_t group = 0;
  return getpeereid(socket, &user, &group) == 0 && user == geteuid();
#endif
}

}  // namespace cef_qt
