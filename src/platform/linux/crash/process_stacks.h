#pragma once

#include <sys/types.h>

#include <string>

namespace zantrio {

// The stacks of all threads of another process as text, the crashed thread's first and without the
// frames of its signal handler; then the files that the frames belong to, with their build ids.
// Functions are named, and lines of source, as far as the files on this machine tell; each frame
// has its file's offset, with which the rest can be found elsewhere. The threads stand still
// meanwhile.
//
// Where the system does not let one process look into another, the text says so.
std::string describeStacks(pid_t process, pid_t crashedThread);

}  // namespace zantrio
