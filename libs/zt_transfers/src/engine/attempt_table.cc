#include "engine/attempt_table.h"

#include <algorithm>
#include <utility>

namespace zt_transfers {

bool foldProgress(Job& job, CTransferGroup& group, TimePoint now) {
  bool changed = false;
  const std::uint64_t size = job.progress->size.load(std::memory_order_relaxed);
  if (size != JobProgress::kUnknown && size != group.file(job.file.index).size) {
    group.setSize(job.file.index, size);
    changed = true;
  }
  const std::uint64_t bytes = std::min(job.progress->bytes.load(std::memory_order_relaxed),
                                       group.file(job.file.index).size);
  if (bytes == job.counted) {
    return changed;
  }
  group.removeInFlight(job.counted);
  group.addInFlight(bytes);
  if (bytes > job.counted) {
    group.measureRate(bytes - job.counted, now);
    job.rate.add(bytes - job.counted, now);
  }
  job.counted = bytes;
  return true;
}

Job& CJobTable::add(FileRef file, TimePoint now) {
  Job job;
  job.id = ++last_;
  job.file = file;
  job.progress = std::make_shared<JobProgress>();
  job.toldAt = now;
  return jobs_.emplace(last_, std::move(job)).first->second;
}

Job* CJobTable::find(JobId id) {
  const auto found = jobs_.find(id);
  return found == jobs_.end() ? nullptr : &found->second;
}

Job* CJobTable::findFile(FileRef file) {
  return const_cast<Job*>(std::as_const(*this).findFile(file));
}

const Job* CJobTable::findFile(FileRef file) const {
  for (const auto& [id, job] : jobs_) {
    if (job.file.groupId == file.groupId && job.file.index == file.index) {
      return &job;
    }
  }
  return nullptr;
}

std::size_t CJobTable::transferring() const {
  return static_cast<std::size_t>(std::count_if(
      jobs_.begin(), jobs_.end(), [](const auto& entry) { return !entry.second.landing; }));
}

std::vector<JobId> CJobTable::ofGroup(std::int32_t groupId) const {
  std::vector<JobId> ids;
  for (const auto& [id, job] : jobs_) {
    if (job.file.groupId == groupId) {
      ids.push_back(id);
    }
  }
  return ids;
}

}  // namespace zt_transfers
