#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <system_error>

#include "download/partial_file.h"
#include "engine/attempt.h"

namespace zt_transfers {

// The disk has no room for a file of the size that only its server announces.
class CNoRoomForClaim : public std::system_error {
 public:
  using std::system_error::system_error;
};

// The outcome of an error of the target's file system.
AttemptOutcome judgeDiskError(const std::exception& error);

// Runs the step and returns its failure, if any.
template <typename Step>
std::optional<AttemptOutcome> failureOf(Step step) {
  try {
    step();
    return std::nullopt;
  } catch (const std::exception& error) {
    return judgeDiskError(error);
  }
}

// Verifies a file that has arrived completely; wrong content is removed. Returns the failure, if
// any. Blocks.
std::optional<AttemptOutcome> checkContent(CPartialFile& file, AttemptProgress& progress,
                                           std::uint64_t size);

}  // namespace zt_transfers
