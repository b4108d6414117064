#include "engine/fault_table.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

namespace zt_transfers {
namespace {

// Whom a fault concerns, and whether waiting helps.
enum class Consequence {
  kFinal,       // waiting does not help
  kFile,        // the file pays for it with one of its retries
  kSuspicious,  // the same, unless other files of the origin fail in a row as well
  kLost,        // the same, but the file gets at least one more attempt
  kDisk,        // all files there wait, and none pays
  kOrigin,      // all files of the origin wait, and none pays
  kDistrust,    // the same, for longer
};

// The shortest rests.
constexpr std::chrono::seconds kDiskRest{5};
constexpr std::chrono::seconds kDistrustRest{60};

AttemptOutcome outcomeOf(Consequence consequence, std::string_view code, std::string reason) {
  AttemptOutcome outcome = consequence == Consequence::kFinal
                               ? AttemptOutcome::final(std::move(reason), code)
                               : AttemptOutcome::retry(std::move(reason), code);
  switch (consequence) {
    case Consequence::kFinal:
    case Consequence::kFile:
      break;
    case Consequence::kLost:
      outcome.retryBudget = AttemptOutcome::RetryBudget::kAtLeastOne;
      outcome.suspectsOrigin = true;
      break;
    case Consequence::kSuspicious:
      outcome.suspectsOrigin = true;
      break;
    case Consequence::kDisk:
      outcome.scope = AttemptOutcome::Scope::kFolder;
      outcome.retryBudget = AttemptOutcome::RetryBudget::kFree;
      outcome.retryAfter = kDiskRest;
      break;
    case Consequence::kDistrust:
      outcome.retryAfter = kDistrustRest;
      [[fallthrough]];
    case Consequence::kOrigin:
      outcome.scope = AttemptOutcome::Scope::kOrigin;
      outcome.retryBudget = AttemptOutcome::RetryBudget::kFree;
      break;
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

constexpr Meaning kRefused{Consequence::kFinal, failure::kRefused};
constexpr Meaning kServersOwn{Consequence::kFile, failure::kServerTrouble};
constexpr Meaning kServerFails{Consequence::kSuspicious, failure::kServerTrouble};
constexpr Meaning kServerDown{Consequence::kOrigin, failure::kServerTrouble};
constexpr Meaning kServerBusy{Consequence::kOrigin, failure::kServerBusy};
constexpr Meaning kProxyWantsLogin{Consequence::kFinal, failure::kProxyAuth};
constexpr Meaning kUnreachable{Consequence::kOrigin, failure::kCannotConnect};
constexpr Meaning kLost{Consequence::kLost, failure::kConnectionLost};
constexpr Meaning kNotTrusted{Consequence::kDistrust, failure::kNotTrusted};
constexpr Meaning kBadUrl{Consequence::kFinal, failure::kBadUrl};

struct StatusRow {
  long first;
  long last;
  Meaning meaning;
};

// Other statuses are the server's last word.
constexpr std::array kStatuses = std::to_array<StatusRow>({
    {407, 407, kProxyWantsLogin},
    {408, 408, kServersOwn},
    {421, 421, kServersOwn},
    {423, 423, kServersOwn},
    {425, 425, kServersOwn},
    {429, 429, kServerBusy},
    {502, 502, kServerDown},  // with the next, what a balancer answers while its servers restart
    {503, 503, kServerBusy},
    {504, 504, kServerDown},
    {511, 511, kServerDown},  // a network that wants a login first
    {520, 526, kServerDown},
    {500, 599, kServerFails},
});

struct ErrorCodeRow {
  std::string_view code;
  Meaning meaning;
};

// In a store's error document, whatever the status.
constexpr std::array kErrorCodes = std::to_array<ErrorCodeRow>({
    {"SlowDown", kServerBusy},
    {"ServiceUnavailable", kServerBusy},
    {"InternalError", kServerFails},
    {"RequestTimeout", kServersOwn},
    {"RequestTimeTooSkewed", kServersOwn},
    {"IncompleteBody", kServersOwn},
    {"BadDigest", kServersOwn},
    {"OperationAborted", kServersOwn},
    {"TemporaryRedirect", kServersOwn},
});

struct CurlRow {
  CURLcode code;
  Meaning meaning;
};

// Any other end of a connection can also be a server that cannot take this one file, and so can a
// response that is not HTTP (the rest of an earlier one, CURLE_UNSUPPORTED_PROTOCOL).
constexpr std::array kCurlCodes = std::to_array<CurlRow>({
    {CURLE_URL_MALFORMAT, kBadUrl},
    {CURLE_COULDNT_RESOLVE_HOST, kUnreachable},
    {CURLE_COULDNT_RESOLVE_PROXY, kUnreachable},
    {CURLE_COULDNT_CONNECT, kUnreachable},
    {CURLE_PROXY, kUnreachable},
    {CURLE_OPERATION_TIMEDOUT, kUnreachable},
    {CURLE_SSL_CONNECT_ERROR, kUnreachable},
    {CURLE_OUT_OF_MEMORY, kUnreachable},
    {CURLE_PEER_FAILED_VERIFICATION, kNotTrusted},
    {CURLE_SSL_CACERT_BADFILE, kNotTrusted},
    {CURLE_SSL_ISSUER_ERROR, kNotTrusted},
    {CURLE_SSL_CRL_BADFILE, kNotTrusted},
    {CURLE_SSL_INVALIDCERTSTATUS, kNotTrusted},
});

template <typename Rows, typename Matches>
Meaning meaningIn(const Rows& rows, Matches matches, const Meaning& unknown) {
  const auto row = std::find_if(rows.begin(), rows.end(), matches);
  return row == rows.end() ? unknown : row->meaning;
}

Meaning meaningOfStatus(long status, std::string_view errorCode) {
  // A store can report trouble with a status of success.
  const bool reported = status / 100 == 2 && !errorCode.empty();
  const Meaning byStatus = meaningIn(
      kStatuses, [=](const auto& row) { return row.first <= status && status <= row.last; },
      reported ? kServersOwn : kRefused);
  return meaningIn(
      kErrorCodes, [=](const auto& row) { return row.code == errorCode; }, byStatus);
}

AttemptOutcome outcomeOf(const Meaning& meaning, const std::string& reason) {
  return outcomeOf(meaning.consequence, meaning.code, reason);
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
  return outcomeOf(role == FileRole::kTarget ? kTargetGone : kSourceGone, reason);
}

AttemptOutcome outcomeOfStatus(long status, std::string_view errorCode, const std::string& reason) {
  return outcomeOf(meaningOfStatus(status, errorCode), reason);
}

AttemptOutcome outcomeOfProxyStatus(long status, const std::string& reason) {
  return outcomeOf(status == 407 ? kProxyWantsLogin : kUnreachable, reason);
}

AttemptOutcome outcomeOfTransport(CURLcode code, const std::string& reason) {
  return outcomeOf(meaningIn(
                       kCurlCodes, [=](const auto& row) { return row.code == code; }, kLost),
                   reason);
}

AttemptOutcome outcomeOfStall() {
  return outcomeOf(kLost, "the connection stalled");
}

}  // namespace zt_transfers
