#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <queue>
#include <vector>

#include "engine/file_spec.h"
#include "base/clock.h"

namespace zt_transfers {

// The order of things to come: groups that have something to begin take turns, and retries and
// rests wait for their time.
//
// Thread: none of its own; the engine guards it.
class CSchedule {
 public:
  struct Due {
    TimePoint when;
    FileRef file;
    bool wholeGroup = false;  // the group's rest is over; `file.index` says nothing
  };

  // The round of groups. A group must be added only once until it was taken.
  void addToRound(std::int32_t groupId) { round_.push_back(groupId); }
  std::optional<std::int32_t> takeFromRound();
  void clearRound() { round_.clear(); }

  void addDue(const Due& due) { dues_.push(due); }
  // The next one whose time has come.
  std::optional<Due> takeDue(TimePoint now);
  std::optional<TimePoint> nextDue() const;
  void clearDues() { dues_ = {}; }

 private:
  struct Later {
    bool operator()(const Due& left, const Due& right) const { return left.when > right.when; }
  };

  std::deque<std::int32_t> round_;
  std::priority_queue<Due, std::vector<Due>, Later> dues_;
};

}  // namespace zt_transfers
