#include "engine/retry_policy.h"

#include <algorithm>

namespace zt_transfers {

std::chrono::milliseconds backoffDelay(const BackoffPolicy& policy, std::uint32_t retry,
                                       double jitter,
                                       std::optional<std::chrono::milliseconds> retryAfter) {
  using std::chrono::milliseconds;
  milliseconds full = policy.base;
  for (std::uint32_t doubled = 1; doubled < retry && full < policy.cap; ++doubled) {
    full *= 2;
  }
  full = std::min(full, policy.cap);
  const double share = 1.0 - std::clamp(jitter, 0.0, 1.0) / 2;
  const milliseconds jittered(static_cast<milliseconds::rep>(share * double(full.count())));
  if (!retryAfter) {
    return jittered;
  }
  const milliseconds asked = std::min(*retryAfter, policy.maxRetryAfter);
  const double more = std::clamp(jitter, 0.0, 1.0) / 5 * double(asked.count());
  return std::max(jittered, asked + milliseconds(static_cast<milliseconds::rep>(more)));
}

std::chrono::milliseconds CRetryPolicy::delay(std::uint32_t retry, const AttemptOutcome& outcome) {
  const double jitter = std::generate_canonical<double, 24>(random_);
  return backoffDelay(policy_, retry, jitter, outcome.retryAfter);
}

CRetryPolicy::Decision CRetryPolicy::decide(const FileSlot& file, bool ownFault,
                                            CTransferGroup::Scheduling& group,
                                            const AttemptOutcome& outcome, TimePoint now) {
  using RetryBudget = AttemptOutcome::RetryBudget;
  Decision decision;
  decision.counts = ownFault && outcome.retryBudget != RetryBudget::kFree;
  const bool atLeastOne = outcome.retryBudget == RetryBudget::kAtLeastOne || outcome.suspectsOrigin;
  decision.maxRetries = atLeastOne ? std::max<std::uint32_t>(maxRetries_, 1) : maxRetries_;
  decision.retry = outcome.kind == AttemptOutcome::Kind::kRetry &&
                   (!decision.counts || file.retries < decision.maxRetries);
  if (decision.retry) {
    restFolder(group, outcome, now);
    decision.delay = delay(
        decision.counts ? file.retries + 1 : std::max(file.waits + 1U, group.outages), outcome);
  }
  return decision;
}

// Attempts that were under way when a wait began do not lengthen it.
void CRetryPolicy::restFolder(CTransferGroup::Scheduling& group, const AttemptOutcome& outcome,
                              TimePoint now) {
  if (outcome.scope != AttemptOutcome::Scope::kFolder) {
    return;
  }
  group.waitingFor = failureOf(outcome.code, outcome.reason);
  group.oneByOne = true;
  if (group.notBefore <= now) {
    ++group.outages;
    group.notBefore = now + delay(group.outages, outcome);
  }
}

}  // namespace zt_transfers
