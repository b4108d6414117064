#include "base/this_thread.h"

#include <pthread.h>

namespace zt_transfers {

void nameThisThread(const std::string& name) {
  ::pthread_setname_np(name.substr(0, 15).c_str());
}

std::uint64_t thisThreadId() {
  std::uint64_t id = 0;
  ::pthread_threadid_np(nullptr, &id);
  return id;
}

}  // namespace zt_transfers
