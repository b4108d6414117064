#include "engine/event_throttle.h"

#include <utility>

namespace zt_transfers {

void CEventThrottle::file(const FileState& state) {
  if (running_) {
    events_.push(state);
  }
}

void CEventThrottle::group(const CTransferGroup& group, TimePoint now) {
  if (!running_) {
    return;
  }
  const LastReported& reported = reported_[group.id()];
  const GroupSnapshot shot = group.snapshot(running_, now);
  const LastReported current{.when = reported.when,
                             .state = shot.state,
                             .paused = shot.paused,
                             .cancelled = shot.cancelled,
                             .marked = shot.marked,
                             .empty = shot.empty};
  if (reported.state == kGroupCompleted && shot.state == kGroupCompleted) {
    remember(shot, reported.when);  // it was told, and is told once
    return;
  }
  if (current != reported) {
    notify(group, now);
    return;
  }
  if (due_.insert(group.id()).second) {
    events_.wake();
  }
}

void CEventThrottle::groupAnew(const CTransferGroup& group, TimePoint now) {
  if (!running_) {
    return;
  }
  const GroupSnapshot shot = group.snapshot(running_, now);
  if (shot.state == kGroupCompleted) {
    remember(shot, now);
  } else {
    notify(group, now);
  }
}

void CEventThrottle::forget(std::int32_t groupId) {
  reported_.erase(groupId);
  due_.erase(groupId);
}

void CEventThrottle::notify(const CTransferGroup& group, TimePoint now) {
  GroupSnapshot shot = group.snapshot(running_, now);
  remember(shot, now);
  due_.erase(group.id());
  events_.push(std::move(shot));
}

void CEventThrottle::remember(const GroupSnapshot& shot, TimePoint now) {
  reported_[shot.id] = LastReported{.when = now,
                                    .state = shot.state,
                                    .paused = shot.paused,
                                    .cancelled = shot.cancelled,
                                    .marked = shot.marked,
                                    .empty = shot.empty};
}

}  // namespace zt_transfers
