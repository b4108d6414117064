#pragma once

#include <string>

#include "engine/attempt.h"

namespace zt_transfers {

// From each fault to its consequence. Final is only what the user or the page must change. A fault
// that the table does not list is tried again.

// The part that a file of this machine plays in a transfer.
enum class FileRole {
  kTarget,  // of a download
  kSource,  // of an upload
};

// `error`: errno of a failed system call on the file or its folder; `reason`: for people.
AttemptOutcome outcomeOfErrno(int error, FileRole role, const std::string& reason);

// The folder that held the file is not there: its disk is probably not mounted.
AttemptOutcome outcomeOfMissingFolder(FileRole role, const std::string& reason);

}  // namespace zt_transfers
