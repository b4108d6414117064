#include <utility>

#include "engine/transfer_engine.h"

namespace zt_transfers {

std::vector<GroupSnapshot> CTransferEngine::groups() const {
  const CMutexLock lock(mutex_);
  const TimePoint now = clock_.now();
  std::vector<GroupSnapshot> shots;
  shots.reserve(table_.groups().size());
  for (const auto& [id, group] : table_.groups()) {
    shots.push_back(group->snapshot(planner_.running(), now));
  }
  return shots;
}

std::optional<GroupSnapshot> CTransferEngine::group(std::int32_t groupId) const {
  const CMutexLock lock(mutex_);
  const auto found = table_.groups().find(groupId);
  if (found == table_.groups().end()) {
    return std::nullopt;
  }
  return found->second->snapshot(planner_.running(), clock_.now());
}

std::optional<CTransferEngine::GroupReport> CTransferEngine::report(std::int32_t groupId) const {
  const CMutexLock lock(mutex_);
  const auto found = table_.groups().find(groupId);
  if (found == table_.groups().end() || found->second->cancelled()) {
    return std::nullopt;
  }
  const CTransferGroup& group = *found->second;
  GroupReport report{.shot = group.snapshot(planner_.running(), clock_.now()),
                     .token = group.identity().token};
  if (!report.shot.waitingFor.empty()) {
    report.waitingFor = group.scheduling.waitingFor;
  }
  report.filesFailed = group.count(FilePhase::kFailed);
  for (auto& [index, failure] : table_.failures().of(groupId)) {
    report.failures.push_back({store_.fileId({groupId, index}), std::move(failure)});
  }
  return report;
}

bool CTransferEngine::isTransferring() const {
  const CMutexLock lock(mutex_);
  return !table_.attempts().empty();
}

bool CTransferEngine::collectProgress() {
  bool mayBegin = false;
  const bool goesOn = foldAll(mayBegin);
  if (mayBegin) {
    wake_();
  }
  return goesOn;
}

}  // namespace zt_transfers
