#include "engine/attempt_table.h"

#include <algorithm>
#include <utility>

namespace zt_transfers {

bool foldProgress(RunningAttempt& attempt, CTransferGroup& group, TimePoint now) {
  bool changed = false;
  const std::uint64_t size = attempt.progress->size.load(std::memory_order_relaxed);
  if (size != AttemptProgress::kUnknown && size != group.file(attempt.file.index).size) {
    group.setSize(attempt.file.index, size);
    changed = true;
  }
  const std::uint64_t bytes = std::min(attempt.progress->bytes.load(std::memory_order_relaxed),
                                       group.file(attempt.file.index).size);
  if (bytes == attempt.counted) {
    return changed;
  }
  group.removeInFlight(attempt.counted);
  group.addInFlight(bytes);
  if (bytes > attempt.counted) {
    group.measureRate(bytes - attempt.counted, now);
    attempt.rate.add(bytes - attempt.counted, now);
  }
  attempt.counted = bytes;
  return true;
}

RunningAttempt& CAttemptTable::add(FileRef file, TimePoint now) {
  RunningAttempt attempt;
  attempt.id = ++last_;
  attempt.file = file;
  attempt.progress = std::make_shared<AttemptProgress>();
  attempt.begunAt = attempt.reportedAt = now;
  return attempts_.emplace(last_, std::move(attempt)).first->second;
}

RunningAttempt* CAttemptTable::find(AttemptId id) {
  const auto found = attempts_.find(id);
  return found == attempts_.end() ? nullptr : &found->second;
}

RunningAttempt* CAttemptTable::findFile(FileRef file) {
  return const_cast<RunningAttempt*>(std::as_const(*this).findFile(file));
}

const RunningAttempt* CAttemptTable::findFile(FileRef file) const {
  for (const auto& [id, attempt] : attempts_) {
    if (attempt.file.groupId == file.groupId && attempt.file.index == file.index) {
      return &attempt;
    }
  }
  return nullptr;
}

std::size_t CAttemptTable::transferring() const {
  return static_cast<std::size_t>(
      std::count_if(attempts_.begin(), attempts_.end(),
                    [](const auto& entry) { return !entry.second.finalization; }));
}

std::vector<AttemptId> CAttemptTable::ofGroup(std::int32_t groupId) const {
  std::vector<AttemptId> ids;
  for (const auto& [id, attempt] : attempts_) {
    if (attempt.file.groupId == groupId) {
      ids.push_back(id);
    }
  }
  return ids;
}

}  // namespace zt_transfers
