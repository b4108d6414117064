#include "engine/schedule.h"

namespace zt_transfers {

std::optional<std::int32_t> CSchedule::takeFromRound() {
  if (round_.empty()) {
    return std::nullopt;
  }
  const std::int32_t groupId = round_.front();
  round_.pop_front();
  return groupId;
}

std::optional<CSchedule::Due> CSchedule::takeDue(TimePoint now) {
  if (dues_.empty() || dues_.top().when > now) {
    return std::nullopt;
  }
  const Due due = dues_.top();
  dues_.pop();
  return due;
}

std::optional<TimePoint> CSchedule::nextDue() const {
  if (dues_.empty()) {
    return std::nullopt;
  }
  return dues_.top().when;
}

}  // namespace zt_transfers
