#include "http/answer_verdict.h"

#include "http/error_document.h"
#include "http/retry_after.h"

namespace zt_transfers {

AttemptOutcome judgeTransport(const HttpAnswer& answer) {
  if (answer.stalled) {
    AttemptOutcome outcome = AttemptOutcome::retry("the connection stalled");
    outcome.sharedTrouble = true;
    return outcome;
  }
  switch (answer.code) {
    case CURLE_URL_MALFORMAT:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
      return AttemptOutcome::final(answer.error);
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
    case CURLE_OPERATION_TIMEDOUT: {
      AttemptOutcome outcome = AttemptOutcome::retry(answer.error);
      outcome.sharedTrouble = true;
      return outcome;
    }
    // Also what is no HTTP at all: bytes that an answer before left on the connection.
    default:
      return AttemptOutcome::retry(answer.error);
  }
}

AttemptOutcome judgeRefusal(const HttpAnswer& answer, std::int64_t now) {
  std::string reason = "the server answered " + std::to_string(answer.status);
  if (const auto code = errorDocumentCode(answer.body)) {
    reason += " (" + *code + ")";
  }
  const bool pace = answer.status == 429 || answer.status == 503;
  if (!pace && answer.status != 408 && answer.status < 500) {
    return AttemptOutcome::final(reason);
  }
  AttemptOutcome outcome = AttemptOutcome::retry(reason);
  outcome.retryAfter = parseRetryAfter(answer.header("retry-after"), now);
  outcome.sharedTrouble = pace;
  return outcome;
}

}  // namespace zt_transfers
