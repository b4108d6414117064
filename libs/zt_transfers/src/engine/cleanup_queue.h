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
#include "engine/queue_store.h"
#include "engine/retry_policy.h"

namespace zt_transfers {

// Orphaned partial files and upload sessions, to be deleted and aborted. Each stays in the store
// until that was done, so that neither failures nor a restart lose it. A failure delays all of
// them.
//
// Thread: none of its own; the engine guards it.
class CCleanupQueue {
 public:
  static constexpr std::size_t kMaxConcurrent = 4;
  // An orphan that is older than this is given up after its next failure.
  static constexpr std::chrono::seconds kMaxAge = std::chrono::hours(7 * 24);

  // Both must outlive it.
  CCleanupQueue(const IClock& clock, IQueueStore& store, const BackoffPolicy& backoff)
      : clock_(clock), store_(store), retries_(backoff) {}

  // Replaces all entries. `last`: higher ids may be used.
  void restore(std::vector<std::pair<OrphanId, Orphan>> stored, OrphanId last = 0);
  // Adds entries that are stored already.
  void adopt(std::vector<std::pair<OrphanId, Orphan>> stored);
  // Ignores resume data that was not begun.
  void add(Orphan orphan);
  // The same, unless it is known already.
  void addOnce(Orphan orphan);
  // A file resumes this after all.
  void forget(const Orphan& used);
  // The next tasks, which are under way from here on.
  std::vector<CleanupTask> takeDue();
  // When a waiting task is due.
  std::optional<TimePoint> nextDue() const;
  // Returns a log line, or empty. kRetry without a reason means that an attempt still holds the
  // file; not an error.
  std::string applyOutcome(OrphanId id, const AttemptOutcome& outcome);
  // All tasks wait again.
  void stop();

 private:
  struct Entry {
    Orphan orphan;
    bool failedBefore = false;
  };

  static bool sameThing(const Orphan& one, const Orphan& other);
  void backOff(const AttemptOutcome& outcome);

  const IClock& clock_;
  IQueueStore& store_;
  CRetryPolicy retries_;
  OrphanId last_ = 0;
  std::map<OrphanId, Entry> entries_;
  std::deque<OrphanId> waiting_;  // all other entries are under way
  std::uint32_t failures_ = 0;    // in a row
  TimePoint notBefore_{};
};

}  // namespace zt_transfers
