#pragma once

#include <exception>

#include "engine/attempt.h"

namespace zt_transfers {

// What follows from an error of the file system: a full disk is tried again, a folder that may
// not be written to is not.
AttemptOutcome judgeFileTrouble(const std::exception& error);

}  // namespace zt_transfers
