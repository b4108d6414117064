#pragma once

#include <exception>
#include <optional>
#include <system_error>

#include "engine/attempt.h"

namespace zt_transfers {

// There is no room for a file of the size that its server announces, and nobody else has said
// that it is so large.
class CNoRoomForClaim : public std::system_error {
 public:
  using std::system_error::system_error;
};

// What follows from an error of the file system: a full disk, or one that is not there, is tried
// again, a folder that may not be written to is not.
AttemptOutcome judgeFileTrouble(const std::exception& error);

// What follows when the step fails; nothing when all is well.
template <typename Step>
std::optional<AttemptOutcome> troubleOf(Step step) {
  try {
    step();
    return std::nullopt;
  } catch (const std::exception& error) {
    return judgeFileTrouble(error);
  }
}

}  // namespace zt_transfers
