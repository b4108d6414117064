#include "zt_transfers/download_manager.h"

#include <map>

namespace zt_transfers {

// Holds the groups; the engine behind it is not wired yet.
class CDownloadManager::Impl {
 public:
  Configuration configuration;
  std::map<std::int32_t, GroupState> groups;
};

CDownloadManager::CDownloadManager() : impl_(std::make_unique<Impl>()) {}
CDownloadManager::~CDownloadManager() = default;

void CDownloadManager::subscribeToEvents(ICallback* /*callback*/) {}

const CDownloadManager::Configuration& CDownloadManager::getConfiguration() const {
  return impl_->configuration;
}

void CDownloadManager::setConfiguration(const Configuration& configuration) {
  impl_->configuration = configuration;
}

void CDownloadManager::fetchGroupsInfo(std::vector<GroupState>& groups) {
  groups.clear();
  for (const auto& [id, group] : impl_->groups) {
    groups.push_back(group);
  }
}

std::int32_t CDownloadManager::createGroup(const std::string& bucketId,
                                           const std::string& bucketType,
                                           const std::string& /*token*/,
                                           std::uint64_t /*tokenExpires*/,
                                           const std::wstring& downloadDirectory) {
  const auto id = static_cast<std::int32_t>(impl_->groups.size()) + 1;
  GroupState& group = impl_->groups[id];
  group.id = id;
  group.bucketId = bucketId;
  group.bucketType = bucketType;
  group.downloadFolder = downloadDirectory;
  return id;
}

int CDownloadManager::getGroupState(std::int32_t groupId, GroupState& state) {
  const auto found = impl_->groups.find(groupId);
  if (found == impl_->groups.end()) {
    return -1;
  }
  state = found->second;
  return 0;
}

void CDownloadManager::queueFiles(std::int32_t /*groupId*/,
                                  const std::vector<FileDownloadDetails>& /*files*/) {}
void CDownloadManager::dequeueFiles(std::int32_t /*groupId*/,
                                    const std::vector<FileDownloadDetails>& /*files*/) {}
void CDownloadManager::pauseGroup(std::int32_t /*groupId*/) {}
void CDownloadManager::resumeGroup(std::int32_t /*groupId*/) {}
void CDownloadManager::cancelGroup(std::int32_t /*groupId*/) {}
void CDownloadManager::startup() {}
void CDownloadManager::shutdown() {}

}  // namespace zt_transfers
