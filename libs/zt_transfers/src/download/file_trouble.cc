#include "download/file_trouble.h"

#include <cerrno>
#include <system_error>

#include "download/target_folder.h"

namespace zt_transfers {
namespace {

// No file of the group would fare better now.
AttemptOutcome diskTrouble(const std::string& reason, std::string_view code) {
  constexpr std::chrono::seconds kUntilItMayBeOver{5};
  AttemptOutcome outcome = AttemptOutcome::retry(reason, code);
  outcome.retryBudget = AttemptOutcome::RetryBudget::kFree;
  outcome.retryAfter = kUntilItMayBeOver;
  outcome.sharedTrouble = true;
  return outcome;
}

}  // namespace

AttemptOutcome judgeFileTrouble(const std::exception& error) {
  if (dynamic_cast<const CNoRoomForClaim*>(&error) != nullptr) {
    return AttemptOutcome::retry(error.what(),
                                 failure::kDiskFull);  // the server may have been wrong
  }
  if (dynamic_cast<const CFolderGone*>(&error) != nullptr) {
    return diskTrouble(error.what(), failure::kTargetMissing);
  }
  const auto* trouble = dynamic_cast<const std::system_error*>(&error);
  switch (trouble != nullptr ? trouble->code().value() : 0) {
    case ENOSPC:
    case EDQUOT:
      return diskTrouble(std::string("the disk is full: ") + error.what(), failure::kDiskFull);
    case ENODEV:
    case ENOTCONN:
    case ENXIO:
      return diskTrouble(std::string("the disk is gone: ") + error.what(), failure::kTargetMissing);
    case EIO:
    case EMFILE:
    case ENFILE:
    case ENOMEM:
    case ESTALE:
      return AttemptOutcome::retry(error.what(), failure::kDiskTrouble);
    case ENOENT:
      return AttemptOutcome::final(error.what(), failure::kTargetMissing);
    default:
      return AttemptOutcome::final(error.what(), failure::kTargetUnusable);
  }
}

}  // namespace zt_transfers
