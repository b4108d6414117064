#include "download/disk_verdict.h"

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "download/target_folder.h"

namespace zt_transfers {
namespace {

// The failure affects every file of the group.
AttemptOutcome diskFailure(const std::string& reason, std::string_view code) {
  constexpr std::chrono::seconds kUntilItMayBeOver{5};
  AttemptOutcome outcome = AttemptOutcome::retry(reason, code);
  outcome.retryBudget = AttemptOutcome::RetryBudget::kFree;
  outcome.retryAfter = kUntilItMayBeOver;
  outcome.scope = AttemptOutcome::Scope::kFolder;
  return outcome;
}

}  // namespace

AttemptOutcome judgeDiskError(const std::exception& error) {
  if (dynamic_cast<const CNoRoomForClaim*>(&error) != nullptr) {
    return AttemptOutcome::retry(error.what(),
                                 failure::kDiskFull);  // the server may have been wrong
  }
  if (dynamic_cast<const CFolderGone*>(&error) != nullptr) {
    return diskFailure(error.what(), failure::kTargetMissing);
  }
  const auto* failed = dynamic_cast<const std::system_error*>(&error);
  switch (failed != nullptr ? failed->code().value() : 0) {
    case ENOSPC:
    case EDQUOT:
      return diskFailure(std::string("the disk is full: ") + error.what(), failure::kDiskFull);
    case ENODEV:
    case ENOTCONN:
    case ENXIO:
      return diskFailure(std::string("the disk is gone: ") + error.what(), failure::kTargetMissing);
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
