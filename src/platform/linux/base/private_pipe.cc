#include "services/private_pipe.h"

#include <fcntl.h>
#include <unistd.h>

namespace zantrio {

bool openPrivatePipe(std::array<int, 2>& ends) {
  return ::pipe2(ends.data(), O_CLOEXEC) == 0;
}

}  // namespace zantrio
