#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "engine/attempt.h"
#include "engine/orphan.h"
#include "engine/queue_store.h"
#include "engine/retry_plan.h"

namespace zt_transfers {

// What is to be cleared away: partial files, and sessions on servers. Each stays in the store until
// it is gone for good, so that neither trouble nor the end of the process leaves it behind. After
// a failure all of them rest.
//
// Thread: none of its own; the engine guards it.
class CCleanupQueue {
 public:
  static constexpr std::size_t kMaxConcurrent = 4;
  // One that is older than this is given up when it cannot be cleared away once more.
  static constexpr std::chrono::seconds kLongest = std::chrono::hours(7 * 24);

  // Both must outlive it.
  CCleanupQueue(const IClock& clock, IQueueStore& store, const BackoffPolicy& backoff)
      : clock_(clock), store_(store), retries_(backoff) {}

  // Takes the place of all there are.
  void restore(std::vector<std::pair<OrphanId, Orphan>> kept);
  // What was not begun is left out.
  void add(Orphan orphan);
  // The same, unless it is there already.
  void addOnce(Orphan orphan);
  // A file goes on with this after all.
  void forget(const Orphan& used);
  // The next ones, which are under way from here on.
  std::vector<CleanupTask> takeDue();
  // When there may be more, unless something else happens before.
  std::optional<TimePoint> nextDue() const;
  // Gives the line for the log; an empty one is not worth it. To be tried again without a reason:
  // an attempt is still at it, which is no trouble.
  std::string applyOutcome(OrphanId id, const AttemptOutcome& outcome);
  // Nothing is under way any more.
  void stop();

 private:
  struct Entry {
    Orphan orphan;
    bool failedBefore = false;
  };

  static bool sameThing(const Orphan& one, const Orphan& other);
  void rest(const AttemptOutcome& outcome);

  const IClock& clock_;
  IQueueStore& store_;
  CRetryPlan retries_;
  OrphanId last_ = 0;
  std::map<OrphanId, Entry> entries_;
  std::deque<OrphanId> waiting_;  // the others are under way
  std::uint32_t troubles_ = 0;    // in a row
  TimePoint notBefore_{};
};

}  // namespace zt_transfers
