#include "engine/memory_queue_store.h"

#include <deque>

#include "engine/id_index.h"
#include "engine/packed_spec.h"

namespace zt_transfers {

class CMemoryQueueStore::CGroup {
 public:
  void append(const FileSpec& spec) {
    files_.emplace_back(spec);
    index_.insert(static_cast<std::uint32_t>(files_.size() - 1));
  }
  void replace(std::uint32_t at, const FileSpec& spec) {
    index_.erase(at);
    files_.at(at) = CPackedSpec(spec);
    index_.insert(at);
  }
  void remove(std::uint32_t at) {
    index_.erase(at);
    files_.at(at) = CPackedSpec(FileSpec{});
  }
  const CPackedSpec& file(std::uint32_t at) const { return files_.at(at); }
  std::optional<std::uint32_t> find(const std::string& fileId) const { return index_.find(fileId); }

 private:
  struct IdOf {
    const std::deque<CPackedSpec>& files;
    std::string_view operator()(std::uint32_t index) const { return files[index].fileId(); }
  };

  std::deque<CPackedSpec> files_;
  CIdIndex<IdOf> index_{IdOf{files_}};
};

CMemoryQueueStore::CMemoryQueueStore() = default;
CMemoryQueueStore::~CMemoryQueueStore() = default;

void CMemoryQueueStore::append(std::int32_t groupId, const FileSpec& spec) {
  std::unique_ptr<CGroup>& group = groups_[groupId];
  if (!group) {
    group = std::make_unique<CGroup>();
  }
  group->append(spec);
}

void CMemoryQueueStore::replace(FileRef file, const FileSpec& spec) {
  groups_.at(file.groupId)->replace(file.index, spec);
}

FileSpec CMemoryQueueStore::spec(FileRef file) const {
  return groups_.at(file.groupId)->file(file.index).unpacked();
}

std::string CMemoryQueueStore::fileId(FileRef file) const {
  return std::string(groups_.at(file.groupId)->file(file.index).fileId());
}

std::string CMemoryQueueStore::place(FileRef file) const {
  return std::string(groups_.at(file.groupId)->file(file.index).place());
}

std::optional<std::uint32_t> CMemoryQueueStore::find(std::int32_t groupId,
                                                     const std::string& fileId) const {
  const auto group = groups_.find(groupId);
  if (group == groups_.end()) {
    return std::nullopt;
  }
  return group->second->find(fileId);
}

void CMemoryQueueStore::remove(FileRef file) {
  groups_.at(file.groupId)->remove(file.index);
}

void CMemoryQueueStore::removeGroup(std::int32_t groupId) {
  groups_.erase(groupId);
}

}  // namespace zt_transfers
