#pragma once

#include <chrono>
#include <random>

#include "engine/attempt.h"
#include "engine/transfer_group.h"
#include "engine/backoff.h"

namespace zt_transfers {

// Decides how long a file, and with it its group, waits after an attempt that failed.
//
// Thread: none of its own; the engine guards it.
class CRetryPlan {
 public:
  explicit CRetryPlan(const BackoffPolicy& policy) : policy_(policy) {}

  // Until the file's next attempt, which is retry number `retry`.
  std::chrono::milliseconds delay(std::uint32_t retry, const AttemptOutcome& outcome);
  // Lets the group rest if the trouble is shared. Failures during a rest were under way when it
  // began and do not lengthen it.
  void rest(CTransferGroup::Pace& pace, const AttemptOutcome& outcome, TimePoint now);

 private:
  double jitter() { return std::generate_canonical<double, 24>(random_); }

  const BackoffPolicy policy_;
  std::minstd_rand random_{std::random_device{}()};
};

}  // namespace zt_transfers
