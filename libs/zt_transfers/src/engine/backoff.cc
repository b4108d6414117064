#include "engine/backoff.h"

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
  return std::max(jittered, std::min(*retryAfter, policy.longestRetryAfter));
}

}  // namespace zt_transfers
