#include "engine/resume_table.h"

#include <algorithm>
#include <limits>

namespace zt_transfers {

void CResumeTable::keep(CTransferGroup& group, std::uint32_t index, const TransferResume& resume) {
  take(group, index);
  if (!resume.begun()) {
    return;
  }
  const std::uint64_t counted = std::min(resume.bytes(), group.file(index).size);
  group.addInFlight(counted);
  entries_.emplace(Key{group.id(), index}, Entry{resume, counted});
}

TransferResume CResumeTable::take(CTransferGroup& group, std::uint32_t index) {
  const auto found = entries_.find({group.id(), index});
  if (found == entries_.end()) {
    return {};
  }
  TransferResume resume = std::move(found->second.resume);
  group.removeInFlight(found->second.counted);
  entries_.erase(found);
  return resume;
}

std::vector<CResumeTable::FileResume> CResumeTable::takeAll(CTransferGroup& group) {
  std::vector<FileResume> all;
  const auto begin = entries_.lower_bound({group.id(), 0});
  const auto end = entries_.upper_bound({group.id(), std::numeric_limits<std::uint32_t>::max()});
  for (auto entry = begin; entry != end; ++entry) {
    group.removeInFlight(entry->second.counted);
    all.push_back({entry->first.second, std::move(entry->second.resume)});
  }
  entries_.erase(begin, end);
  return all;
}

std::uint64_t CResumeTable::counted(FileRef file) const {
  const auto found = entries_.find({file.groupId, file.index});
  return found == entries_.end() ? 0 : found->second.counted;
}

}  // namespace zt_transfers
