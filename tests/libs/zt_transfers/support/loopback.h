#pragma once

#include "base/unique_fd.h"

namespace zt_transfers::test {

// A socket that listens on 127.0.0.1, at `port`; 0: at one that the system chooses. Throws on
// failure.
CUniqueFd listenOnLoopback(int& port);

}  // namespace zt_transfers::test
