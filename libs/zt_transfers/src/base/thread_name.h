#pragma once

#include <pthread.h>

#include <string>

namespace zt_transfers {

// Names the calling thread for debuggers and for the log; at most 15 bytes are kept.
inline void nameThisThread(const std::string& name) {
#if defined(__APPLE__)
  pthread_setname_np(name.substr(0, 15).c_str());
#else
  pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
#endif
}

}  // namespace zt_transfers
