#include "engine/memory_queue_store.h"

namespace zt_transfers {

void CMemoryQueueStore::append(std::int32_t groupId, const FileSpec& spec) {
  Group& group = groups_[groupId];
  const auto index = static_cast<std::uint32_t>(group.files.size());
  group.files.emplace_back(spec);
  group.byFileId.erase(spec.fileId);
  group.byFileId.emplace(group.files.back().fileId(), index);
}

void CMemoryQueueStore::replace(FileRef file, const FileSpec& spec) {
  remove(file);
  Group& group = groups_.at(file.groupId);
  group.files[file.index] = CPackedSpec(spec);
  group.byFileId.emplace(group.files[file.index].fileId(), file.index);
}

FileSpec CMemoryQueueStore::spec(FileRef file) const {
  return groups_.at(file.groupId).files.at(file.index).unpacked();
}

std::string CMemoryQueueStore::fileId(FileRef file) const {
  return std::string(groups_.at(file.groupId).files.at(file.index).fileId());
}

std::string CMemoryQueueStore::place(FileRef file) const {
  return std::string(groups_.at(file.groupId).files.at(file.index).place());
}

std::optional<std::uint32_t> CMemoryQueueStore::find(std::int32_t groupId,
                                                     const std::string& fileId) const {
  const auto group = groups_.find(groupId);
  if (group == groups_.end()) {
    return std::nullopt;
  }
  const auto found = group->second.byFileId.find(fileId);
  if (found == group->second.byFileId.end()) {
    return std::nullopt;
  }
  return found->second;
}

void CMemoryQueueStore::remove(FileRef file) {
  Group& group = groups_.at(file.groupId);
  CPackedSpec& packed = group.files.at(file.index);
  group.byFileId.erase(packed.fileId());
  packed = CPackedSpec(FileSpec{});
}

void CMemoryQueueStore::removeGroup(std::int32_t groupId) {
  groups_.erase(groupId);
}

}  // namespace zt_transfers
