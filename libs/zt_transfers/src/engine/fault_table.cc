#include "engine/fault_table.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

namespace zt_transfers {
namespace {

// Whom a fault concerns, and whether waiting helps.
enum class Consequence {
  kFinal,  // waiting does not help
  kFile,   // the file pays for it with one of its retries
  kDisk,   // all files there wait, and none pays
};

// The shortest rest of a disk.
constexpr std::chrono::seconds kDiskRest{5};

AttemptOutcome outcomeOf(Consequence consequence, std::string_view code, std::string reason) {
  AttemptOutcome outcome = consequence == Consequence::kFinal
                               ? AttemptOutcome::final(std::move(reason), code)
                               : AttemptOutcome::retry(std::move(reason), code);
  if (consequence == Consequence::kDisk) {
    outcome.scope = AttemptOutcome::Scope::kFolder;
    outcome.retryBudget = AttemptOutcome::RetryBudget::kFree;
    outcome.retryAfter = kDiskRest;
  }
  return outcome;
}

struct Meaning {
  Consequence consequence;
  std::string_view code;
};

struct ErrnoRow {
  int error;
  Meaning target;
  Meaning source;
};

constexpr Meaning kTargetWrong{Consequence::kFinal, failure::kTargetUnusable};
constexpr Meaning kTargetGone{Consequence::kDisk, failure::kTargetMissing};
constexpr Meaning kTargetAway{Consequence::kDisk, failure::kDiskTrouble};
constexpr Meaning kTargetFull{Consequence::kDisk, failure::kDiskFull};
constexpr Meaning kSourceWrong{Consequence::kFinal, failure::kSourceUnreadable};
constexpr Meaning kSourceNotThere{Consequence::kFinal, failure::kSourceMissing};
constexpr Meaning kSourceGone{Consequence::kDisk, failure::kSourceMissing};
constexpr Meaning kSourceAway{Consequence::kDisk, failure::kSourceUnreadable};

constexpr Meaning kUnknownOfTarget{Consequence::kFile, failure::kDiskTrouble};
constexpr Meaning kUnknownOfSource{Consequence::kFile, failure::kSourceUnreadable};

constexpr std::array kErrnos = std::to_array<ErrnoRow>({
  // The user or the page must change something.
  {EACCES, kTargetWrong, kSourceWrong}, {EPERM, kTargetWrong, kSourceWrong},
      {EINVAL, kTargetWrong, kSourceWrong},  // such as a name that the file system does not take
      {ENAMETOOLONG, kTargetWrong, kSourceWrong}, {EILSEQ, kTargetWrong, kSourceWrong},
      {ELOOP, kTargetWrong, kSourceWrong}, {EISDIR, kTargetWrong, kSourceWrong},
      {EFBIG, kTargetWrong, kSourceWrong}, {ENOTDIR, kTargetWrong, kSourceNotThere},
      {ENOENT, {Consequence::kFinal, failure::kTargetMissing}, kSourceNotThere},
      // The disk is full, for now.
      {ENOSPC, kTargetFull, kUnknownOfSource}, {EDQUOT, kTargetFull, kUnknownOfSource},
      // The disk was taken away.
      {ENODEV, kTargetGone, kSourceGone}, {ENXIO, kTargetGone, kSourceGone},
      {ENOTCONN, kTargetGone, kSourceGone},
      // The disk, or the network before it, is in trouble. A disk that fails is often made
      // read-only. A read error can be a flaw in this one file.
      {EIO, kTargetAway, kUnknownOfSource}, {EROFS, kTargetAway, kSourceAway},
      {ESTALE, kTargetAway, kSourceAway}, {ETIMEDOUT, kTargetAway, kSourceAway},
      {EHOSTDOWN, kTargetAway, kSourceAway}, {EHOSTUNREACH, kTargetAway, kSourceAway},
      {ENETDOWN, kTargetAway, kSourceAway}, {ENETUNREACH, kTargetAway, kSourceAway},
      {ENETRESET, kTargetAway, kSourceAway}, {ECONNREFUSED, kTargetAway, kSourceAway},
      {ECONNRESET, kTargetAway, kSourceAway}, {ECONNABORTED, kTargetAway, kSourceAway},
      {ESHUTDOWN, kTargetAway, kSourceAway}, {EPIPE, kTargetAway, kSourceAway},
      {EAGAIN, kTargetAway, kSourceAway}, {EBUSY, kTargetAway, kSourceAway},
      {EINTR, kTargetAway, kSourceAway}, {ENOLCK, kTargetAway, kSourceAway},
#if defined(EREMOTEIO)
      {EREMOTEIO, kTargetAway, kSourceAway},
#endif
      // This machine lacks something that others will give back.
      {EMFILE, kTargetAway, kSourceAway}, {ENFILE, kTargetAway, kSourceAway},
      {ENOMEM, kTargetAway, kSourceAway},
});

Meaning meaningOf(int error, FileRole role) {
  const auto row = std::find_if(kErrnos.begin(), kErrnos.end(),
                                [error](const ErrnoRow& known) { return known.error == error; });
  if (role == FileRole::kTarget) {
    return row == kErrnos.end() ? kUnknownOfTarget : row->target;
  }
  return row == kErrnos.end() ? kUnknownOfSource : row->source;
}

}  // namespace

AttemptOutcome outcomeOfErrno(int error, FileRole role, const std::string& reason) {
  const Meaning meaning = meaningOf(error, role);
  const bool gone =
      meaning.consequence == Consequence::kDisk &&
      (meaning.code == failure::kTargetMissing || meaning.code == failure::kSourceMissing);
  const std::string_view before = gone                                 ? "the disk is gone: "
                                  : meaning.code == failure::kDiskFull ? "the disk is full: "
                                                                       : "";
  return outcomeOf(meaning.consequence, meaning.code, std::string(before) + reason);
}

AttemptOutcome outcomeOfMissingFolder(FileRole role, const std::string& reason) {
  const Meaning& gone = role == FileRole::kTarget ? kTargetGone : kSourceGone;
  return outcomeOf(gone.consequence, gone.code, reason);
}

}  // namespace zt_transfers
