#include "base/this_thread.h"

#include <pthread.h>
#include <unistd.h>

namespace zt_transfers {

void nameThisThread(const std::string& name) {
  ::pthread_setname_np(::pthread_self(), name.substr(0, 15).c_str());
}

std::uint64_t thisThreadId() {
  return static_cast<std::uint64_t>(::gettid());
}

}  // namespace zt_transfers
