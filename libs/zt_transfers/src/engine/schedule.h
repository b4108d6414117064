#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <queue>
#include <vector>

#include "base/clock.h"
#include "engine/file_spec.h"

namespace zt_transfers {

// The round of groups that have files to begin, and the times at which retries and delayed groups
// are due.
//
// Thread: none of its own; the engine guards it.
class CSchedule {
 public:
  struct Due {
    TimePoint when;
    FileRef file;
    bool wholeGroup = false;  // the group's delay is over; `file.index` is unused
  };

  // A group must not be added again before it was taken.
  void addToRound(std::int32_t groupId) { round_.push_back(groupId); }
  std::optional<std::int32_t> takeFromRound();
  void clearRound() { round_.clear(); }

  void addDue(const Due& due) { dues_.push(due); }
  // The next one that is due.
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
