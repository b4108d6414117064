#include "engine/event_throttle.h"

#include <utility>

namespace zt_transfers {

void CReporter::file(const FileState& state) {
  if (running_) {
    events_.push(state);
  }
}

void CReporter::group(const CTransferGroup& group, TimePoint now) {
  if (!running_) {
    return;
  }
  const Told& told = told_[group.id()];
  const GroupSnapshot shot = group.snapshot(running_, now);
  const Told current{.when = told.when,
                     .state = shot.state,
                     .paused = shot.paused,
                     .cancelled = shot.cancelled,
                     .marked = shot.marked,
                     .empty = shot.empty};
  if (told.state == kGroupCompleted && shot.state == kGroupCompleted) {
    remember(shot, told.when);  // it was told, and is told once
    return;
  }
  if (current != told) {
    tell(group, now);
    return;
  }
  if (due_.insert(group.id()).second) {
    events_.poke();
  }
}

void CReporter::groupAnew(const CTransferGroup& group, TimePoint now) {
  if (!running_) {
    return;
  }
  const GroupSnapshot shot = group.snapshot(running_, now);
  if (shot.state == kGroupCompleted) {
    remember(shot, now);
  } else {
    tell(group, now);
  }
}

void CReporter::forget(std::int32_t groupId) {
  told_.erase(groupId);
  due_.erase(groupId);
}

void CReporter::tell(const CTransferGroup& group, TimePoint now) {
  GroupSnapshot shot = group.snapshot(running_, now);
  remember(shot, now);
  due_.erase(group.id());
  events_.push(std::move(shot));
}

void CReporter::remember(const GroupSnapshot& shot, TimePoint now) {
  told_[shot.id] = Told{.when = now,
                        .state = shot.state,
                        .paused = shot.paused,
                        .cancelled = shot.cancelled,
                        .marked = shot.marked,
                        .empty = shot.empty};
}

}  // namespace zt_transfers
