#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>

#include "engine/attempt.h"
#include "engine/transfer_group.h"

namespace zt_transfers {

struct BackoffPolicy {
  std::chrono::milliseconds base{1000};
  std::chrono::milliseconds cap{60'000};
  std::chrono::milliseconds maxRetryAfter{3'600'000};  // limits what a server asks for
};

// The delay before retry number `retry` (from 1 on). It doubles with each retry up to the cap;
// `jitter` in [0, 1) takes off up to half of it, so that clients that failed together do not return
// together. The delay that the server asked for is the minimum; `jitter` adds up to a fifth to it.
std::chrono::milliseconds backoffDelay(const BackoffPolicy& policy, std::uint32_t retry,
                                       double jitter,
                                       std::optional<std::chrono::milliseconds> retryAfter);

// Decides whether and when a file is tried again after an attempt that failed, and how long its
// group waits for its folder.
//
// Thread: none of its own; the engine guards it.
class CRetryPolicy {
 public:
  struct Decision {
    bool retry = false;            // false: the file fails
    bool counts = false;           // the retry uses up one of the file's
    std::uint32_t maxRetries = 0;  // of this file, after such an outcome
    std::chrono::milliseconds delay{0};
  };

  explicit CRetryPolicy(const BackoffPolicy& policy) : policy_(policy) {}

  void setMaxRetries(std::uint32_t maxRetries) { maxRetries_ = maxRetries; }

  // `ownFault`: of the file or its folder, not of its origin. If the file is tried again after
  // trouble with its folder, its group waits, too.
  Decision decide(const FileSlot& file, bool ownFault, CTransferGroup::Scheduling& group,
                  const AttemptOutcome& outcome, TimePoint now);
  std::chrono::milliseconds delay(std::uint32_t retry, const AttemptOutcome& outcome);

 private:
  void restFolder(CTransferGroup::Scheduling& group, const AttemptOutcome& outcome, TimePoint now);

  const BackoffPolicy policy_;
  std::uint32_t maxRetries_ = 5;
  std::minstd_rand random_{std::random_device{}()};
};

}  // namespace zt_transfers
