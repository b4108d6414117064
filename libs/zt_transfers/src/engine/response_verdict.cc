#include "engine/response_verdict.h"

#include <algorithm>

#include "engine/fault_table.h"
#include "http/error_document.h"
#include "http/retry_after.h"

namespace zt_transfers {

namespace {

// The longer of both rests.
void askForRest(AttemptOutcome& outcome, const HttpResponse& response, std::int64_t now) {
  const auto asked = parseRetryAfter(response.header("retry-after"), now);
  if (asked && outcome.kind == AttemptOutcome::Kind::kRetry) {
    outcome.retryAfter = std::max(*asked, outcome.retryAfter.value_or(*asked));
  }
}

}  // namespace

AttemptOutcome judgeTransport(const HttpResponse& response, std::int64_t now) {
  if (response.stalled) {
    return outcomeOfStall();
  }
  if (response.proxyStatus == 0 || response.proxyStatus / 100 == 2) {
    return outcomeOfTransport(response.code, response.error);
  }
  AttemptOutcome outcome = outcomeOfProxyStatus(
      response.proxyStatus, "the proxy answered " + std::to_string(response.proxyStatus));
  askForRest(outcome, response, now);
  return outcome;
}

AttemptOutcome judgeRefusal(const HttpResponse& response, std::int64_t now) {
  std::string reason = "the server answered " + std::to_string(response.status);
  const auto code = errorDocumentCode(response.body);
  if (code) {
    reason += " (" + *code + ")";
  }
  AttemptOutcome outcome = outcomeOfStatus(response.status, code.value_or(""), reason);
  askForRest(outcome, response, now);
  return outcome;
}

}  // namespace zt_transfers
