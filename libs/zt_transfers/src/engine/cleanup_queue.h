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

#include "engine/attempt.h"
#include "engine/orphan.h"
#include "engine/queue_store.h"
#include "engine/retry_plan.h"
#include "base/clock.h"

namespace zt_transfers {

// What is to be cleared away: partial files, and sessions on servers. Each stays in the store until
// it is gone for good, so that neither trouble nor the end of the process leaves it behind. After
// a failure all of them rest.
//
// Thread: none of its own; the engine guards it.
class CLeftoverBook {
 public:
  static constexpr std::size_t kMostAtOnce = 4;
  // One that is older than this is given up when it cannot be cleared away once more.
  static constexpr std::chrono::seconds kLongest = std::chrono::hours(7 * 24);

  // Both must outlive it.
  CLeftoverBook(const IClock& clock, IQueueStore& store, const BackoffPolicy& backoff)
      : clock_(clock), store_(store), retries_(backoff) {}

  // Takes the place of all there are.
  void restore(std::vector<std::pair<LeftoverId, Leftover>> kept);
  // What was not begun is left out.
  void add(Leftover leftover);
  // The same, unless it is there already.
  void addOnce(Leftover leftover);
  // A file goes on with this after all.
  void forget(const Leftover& used);
  // The next ones, which are under way from here on.
  std::vector<DiscardOrder> takeDue();
  // When there may be more, unless something else happens before.
  std::optional<TimePoint> nextDue() const;
  // Gives the line for the log; an empty one is not worth it. To be tried again without a reason:
  // an attempt is still at it, which is no trouble.
  std::string settle(LeftoverId id, const AttemptOutcome& outcome);
  // Nothing is under way any more.
  void stop();

 private:
  struct Entry {
    Leftover leftover;
    bool failedBefore = false;
  };

  static bool sameThing(const Leftover& one, const Leftover& other);
  void rest(const AttemptOutcome& outcome);

  const IClock& clock_;
  IQueueStore& store_;
  CRetryPlan retries_;
  LeftoverId last_ = 0;
  std::map<LeftoverId, Entry> entries_;
  std::deque<LeftoverId> waiting_;  // the others are under way
  std::uint32_t troubles_ = 0;      // in a row
  TimePoint notBefore_{};
};

}  // namespace zt_transfers
