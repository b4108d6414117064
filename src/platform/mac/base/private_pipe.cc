#include "services/private_pipe.h"

#include <fcntl.h>
#include <unistd.h>

namespace zantrio {

// A program that another thread starts between the calls inherits the pipe; the system has no call
// that does both.
bool openPrivatePipe(std::array<int, 2>& ends) {
  if (::pipe(ends.data()) != 0) {
    return false;
  }
  for (const int end : ends) {
    ::fcntl(end, F_SETFD, FD_CLOEXEC);
  }
  return true;
}

}  // namespace zantrio
