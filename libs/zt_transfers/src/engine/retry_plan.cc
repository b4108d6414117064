#include "engine/retry_plan.h"

namespace zt_transfers {

std::chrono::milliseconds CRetryPlan::delay(std::uint32_t retry, const AttemptOutcome& outcome) {
  return backoffDelay(policy_, retry, jitter(), outcome.retryAfter);
}

void CRetryPlan::rest(CTransferGroup::Pace& pace, const AttemptOutcome& outcome, TimePoint now) {
  if (outcome.sharedTrouble) {
    pace.waitingFor = failureOf(outcome.code, outcome.reason);
  }
  if (outcome.sharedTrouble && pace.notBefore <= now) {
    ++pace.troubles;
    pace.notBefore = now + delay(pace.troubles, outcome);
  }
}

}  // namespace zt_transfers
