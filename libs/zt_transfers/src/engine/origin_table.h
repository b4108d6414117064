#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/clock.h"
#include "engine/attempt.h"
#include "engine/circuit_breaker.h"
#include "engine/parked_files.h"
#include "engine/retry_policy.h"

namespace zt_transfers {

// All servers, over all groups: how each is, the attempts under way there, and the groups that wait
// for a place there.
//
// Thread: none of its own; the engine guards it.
class COriginTable {
 public:
  // Kept by an attempt.
  struct Ticket {
    OriginId origin = 0;
    CCircuitBreaker::Ticket breaker{};
  };
  struct Candidate {
    OriginId origin = 0;
    std::int32_t groupId = 0;
    std::size_t load = 0;  // attempts under way at the origin plus those of the group
  };
  struct Judgement {
    bool toBlame = false;  // the origin, not the file
    std::vector<CCircuitBreaker::Refund> refunds{};
    std::vector<std::int32_t> groups{};  // that wait for the origin, which begins to rest
  };

  explicit COriginTable(const BackoffPolicy& policy) : retries_(policy) {}

  OriginId idOf(std::string_view url);
  const CCircuitBreaker& breaker(OriginId origin) const { return origins_.at(origin).breaker; }
  std::size_t running(OriginId origin) const;
  // Its rest is over, and nothing has been begun there since.
  bool mayProbe(OriginId origin, TimePoint now) const;
  void endRest(OriginId origin);
  void clear();

  // The group has files parked at the origin; `running`: the attempts of the group. A group that
  // waits already keeps its turn.
  void await(OriginId origin, std::int32_t groupId, std::size_t running);
  void leave(OriginId origin, std::int32_t groupId);
  // The group whose turn it is to begin a file: one whose origin admits it and where the fewest
  // attempts are under way, counted at the origin and in the group; then the one that has waited
  // longest.
  std::optional<Candidate> next(TimePoint now) const;
  // When a rest ends for which a group waits.
  std::optional<TimePoint> nextDue(TimePoint now) const;

  Ticket begin(OriginId origin, TimePoint now);
  // The attempt has ended, and has given its place back.
  void end(const Ticket& ticket);
  void succeed(const Ticket& ticket);
  void prove(const Ticket& ticket);
  // The attempt at `file` has ended with this outcome, which is not kDone.
  Judgement judge(const Ticket& ticket, FileRef file, const AttemptOutcome& outcome, TimePoint now);

 private:
  struct Waiter {
    std::size_t running = 0;
    std::uint64_t turn = 0;
    std::int32_t groupId = 0;
    bool operator<(const Waiter& other) const {
      return running != other.running ? running < other.running : turn < other.turn;
    }
  };
  struct Origin {
    CCircuitBreaker breaker{};
    std::size_t running = 0;
    std::set<Waiter> queue{};
    std::unordered_map<std::int32_t, Waiter> waiters{};  // by group
  };

  Origin* find(const Ticket& ticket);
  void rest(Origin& origin, const AttemptOutcome& outcome, TimePoint now, Judgement& judgement);

  CRetryPolicy retries_;
  std::unordered_map<std::string, OriginId> ids_;
  std::unordered_map<OriginId, Origin> origins_;
  std::set<OriginId> awaited_;  // those with waiters
  std::uint64_t lastTurn_ = 0;
};

}  // namespace zt_transfers
