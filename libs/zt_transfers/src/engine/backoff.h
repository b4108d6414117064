#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace zt_transfers {

struct BackoffPolicy {
  std::chrono::milliseconds base{1000};
  std::chrono::milliseconds cap{60'000};
  // A server that asks for more than this gets this.
  std::chrono::milliseconds longestRetryAfter{3'600'000};
};

// How long to wait before attempt number `retry` (1: the first repetition). The wait doubles with
// each retry up to the cap; of it, `jitter` in [0, 1) takes off up to a half, so that clients
// that failed together do not come back together. What the server asked for is the least.
std::chrono::milliseconds backoffDelay(const BackoffPolicy& policy, std::uint32_t retry,
                                       double jitter,
                                       std::optional<std::chrono::milliseconds> retryAfter);

}  // namespace zt_transfers
