#include "download/file_trouble.h"

#include <cerrno>
#include <system_error>

namespace zt_transfers {

AttemptOutcome judgeFileTrouble(const std::exception& error) {
  constexpr std::chrono::seconds kUntilThereMayBeRoom{5};
  const auto* trouble = dynamic_cast<const std::system_error*>(&error);
  switch (trouble != nullptr ? trouble->code().value() : 0) {
    case ENOSPC:
    case EDQUOT: {
      // No file of the group would fare better now.
      AttemptOutcome outcome =
          AttemptOutcome::retry(std::string("the disk is full: ") + error.what());
      outcome.retryAfter = kUntilThereMayBeRoom;
      outcome.sharedTrouble = true;
      return outcome;
    }
    case EIO:
    case EMFILE:
    case ENFILE:
    case ENOMEM:
    case ESTALE:
      return AttemptOutcome::retry(error.what());
    default:
      return AttemptOutcome::final(error.what());
  }
}

}  // namespace zt_transfers
