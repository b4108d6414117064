#include "download/disk_verdict.h"

#include <cerrno>
#include <chrono>
#include <new>
#include <system_error>
#include <utility>

#include "download/target_folder.h"
#include "engine/fault_table.h"

namespace zt_transfers {

AttemptOutcome judgeDiskError(const std::exception& error) {
  if (dynamic_cast<const CNoRoomForClaim*>(&error) != nullptr) {
    // The server may have been wrong.
    return AttemptOutcome::retry(error.what(), failure::kDiskFull);
  }
  if (dynamic_cast<const CPartialFileInUse*>(&error) != nullptr) {
    constexpr std::chrono::seconds kUntilItMayBeFree{1};
    AttemptOutcome outcome = AttemptOutcome::retry(error.what(), failure::kDiskTrouble);
    outcome.retryBudget = AttemptOutcome::RetryBudget::kFree;
    outcome.retryAfter = kUntilItMayBeFree;
    return outcome;
  }
  if (dynamic_cast<const CFolderGone*>(&error) != nullptr) {
    return outcomeOfMissingFolder(FileRole::kTarget, error.what());
  }
  int code = 0;
  if (const auto* failed = dynamic_cast<const std::system_error*>(&error)) {
    code = failed->code().value();
  } else if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) {
    code = ENOMEM;
  }
  return outcomeOfErrno(code, FileRole::kTarget, error.what());
}

std::optional<AttemptOutcome> checkContent(CPartialFile& file, AttemptProgress& progress,
                                           std::uint64_t size) {
  std::optional<std::string> problem;
  auto failure = failureOf([&] {
    problem = file.verify(size);
    if (problem) {
      file.discardNow();
      progress.setResume({});
    }
  });
  if (failure || !problem) {
    return failure;
  }
  return AttemptOutcome::retry(std::move(*problem), failure::kWrongDigest);
}

}  // namespace zt_transfers
