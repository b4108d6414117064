#include "zt_transfers/upload_manager.h"

#include <map>

namespace zt_transfers {

// Holds the groups; the engine behind it is not wired yet.
class CUploadManager::Impl {
 public:
  Configuration configuration;
  std::map<std::int32_t, GroupState> groups;
};

CUploadManager::CUploadManager() : impl_(std::make_unique<Impl>()) {}
CUploadManager::~CUploadManager() = default;

void CUploadManager::subscribeToEvents(ICallback* /*callback*/) {}

const CUploadManager::Configuration& CUploadManager::getConfiguration() const {
  return impl_->configuration;
}

void CUploadManager::setConfiguration(const Configuration& configuration) {
  impl_->configuration = configuration;
}

void CUploadManager::fetchGroupsInfo(std::vector<GroupState>& groups) {
  groups.clear();
  for (const auto& [id, group] : impl_->groups) {
    groups.push_back(group);
  }
}

std::int32_t CUploadManager::createGroup(const std::string& bucketId, const std::string& bucketType,
                                         const std::string& /*token*/,
                                         std::uint64_t /*tokenExpires*/) {
  const auto id = static_cast<std::int32_t>(impl_->groups.size()) + 1;
  GroupState& group = impl_->groups[id];
  group.id = id;
  group.bucketId = bucketId;
  group.bucketType = bucketType;
  return id;
}

int CUploadManager::getGroupState(std::int32_t groupId, GroupState& state) {
  const auto found = impl_->groups.find(groupId);
  if (found == impl_->groups.end()) {
    return -1;
  }
  state = found->second;
  return 0;
}

void CUploadManager::queueFiles(std::int32_t /*groupId*/, const std::vector<FileDesc>& /*files*/) {}
void CUploadManager::dequeueFile(std::int32_t /*groupId*/, const std::vector<FileDesc>& /*files*/) {
}
void CUploadManager::markQueue(std::int32_t /*groupId*/) {}
void CUploadManager::unmarkQueue(std::int32_t /*groupId*/) {}
void CUploadManager::pauseGroup(std::int32_t /*groupId*/) {}
void CUploadManager::resumeGroup(std::int32_t /*groupId*/) {}
void CUploadManager::cancelGroup(std::int32_t /*groupId*/) {}
void CUploadManager::startup() {}
void CUploadManager::shutdown() {}

}  // namespace zt_transfers
