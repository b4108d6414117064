#pragma once

#include <sys/types.h>

#include <string>

namespace zantrio {

// Formats the stacks of all threads of another process, the crashed thread's first and without its
// signal handler, then the files of the frames with their build ids. Functions and source lines are
// named as far as local files allow; each frame has its file offset for later lookup. The threads
// are stopped meanwhile.
//
// If the system does not allow tracing, the text says so.
std::string describeStacks(pid_t process, pid_t crashedThread);

}  // namespace zantrio
