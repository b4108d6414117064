#include "engine/failure_log.h"

#include <utility>

namespace zt_transfers {

void CFailureLog::add(std::int32_t groupId, std::uint32_t index, Failure failure) {
  forget(groupId, index);
  Group& group = groups_[groupId];
  group.ages.emplace(index, group.next);
  group.byAge.emplace(group.next++, Entry{index, std::move(failure)});
  if (group.byAge.size() > kMaxOfAGroup) {
    group.ages.erase(group.byAge.begin()->second.index);
    group.byAge.erase(group.byAge.begin());
  }
}

void CFailureLog::forget(std::int32_t groupId, std::uint32_t index) {
  const auto group = groups_.find(groupId);
  if (group == groups_.end()) {
    return;
  }
  if (const auto age = group->second.ages.extract(index)) {
    group->second.byAge.erase(age.mapped());
  }
}

std::vector<CFailureLog::Entry> CFailureLog::of(std::int32_t groupId) const {
  std::vector<Entry> entries;
  if (const auto group = groups_.find(groupId); group != groups_.end()) {
    for (auto entry = group->second.byAge.rbegin(); entry != group->second.byAge.rend(); ++entry) {
      entries.push_back(entry->second);
    }
  }
  return entries;
}

}  // namespace zt_transfers
