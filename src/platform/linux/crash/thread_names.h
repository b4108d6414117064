#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace zantrio {

// The threads of a process, ordered by number. Empty when it is gone.
std::vector<pid_t> threadsOf(pid_t process);

// A thread's number and name, as in "1234 (zt-net-up)".
std::string nameThread(pid_t process, pid_t thread);

}  // namespace zantrio
