#include "engine/response_verdict.h"

#include "http/error_document.h"
#include "http/retry_after.h"

namespace zt_transfers {

namespace {

// The network or the server is down, whatever the file.
AttemptOutcome unreachable(const std::string& reason) {
  AttemptOutcome outcome = AttemptOutcome::retry(reason, failure::kCannotConnect);
  outcome.scope = AttemptOutcome::Scope::kOrigin;
  outcome.retryBudget = AttemptOutcome::RetryBudget::kFree;
  return outcome;
}

// Either the network failed, or the server cannot take this file.
AttemptOutcome lost(const std::string& reason) {
  AttemptOutcome outcome = AttemptOutcome::retry(reason, failure::kConnectionLost);
  outcome.retryBudget = AttemptOutcome::RetryBudget::kAtLeastOne;
  return outcome;
}

}  // namespace

AttemptOutcome judgeTransport(const HttpResponse& response) {
  if (response.stalled) {
    AttemptOutcome outcome = lost("the connection stalled");
    outcome.scope = AttemptOutcome::Scope::kOrigin;
    return outcome;
  }
  switch (response.code) {
    case CURLE_URL_MALFORMAT:
      return AttemptOutcome::final(response.error, failure::kBadUrl);
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
      return AttemptOutcome::final(response.error, failure::kNotTrusted);
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
    case CURLE_OPERATION_TIMEDOUT:
      return unreachable(response.error);
    // Also a response that is not HTTP: rests of an earlier one on the connection.
    default:
      return lost(response.error);
  }
}

AttemptOutcome judgeRefusal(const HttpResponse& response, std::int64_t now) {
  std::string reason = "the server answered " + std::to_string(response.status);
  if (const auto code = errorDocumentCode(response.body)) {
    reason += " (" + *code + ")";
  }
  const bool throttled = response.status == 429 || response.status == 503;
  if (!throttled && response.status != 408 && response.status < 500) {
    return AttemptOutcome::final(reason, failure::kRefused);
  }
  AttemptOutcome outcome =
      AttemptOutcome::retry(reason, throttled ? failure::kServerBusy : failure::kServerTrouble);
  outcome.retryAfter = parseRetryAfter(response.header("retry-after"), now);
  outcome.scope = throttled ? AttemptOutcome::Scope::kOrigin : AttemptOutcome::Scope::kFile;
  return outcome;
}

}  // namespace zt_transfers
