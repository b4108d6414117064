#include "zt_transfers/download_manager.h"

#include <utility>

#include "base/file_ops.h"
#include "base/wide_bytes.h"
#include "download/download_runner.h"
#include "manager/manager_impl.h"

namespace zt_transfers {
namespace {

CDownloadManager::GroupState downloadGroup(const GroupSnapshot& shot) {
  CDownloadManager::GroupState state;
  static_cast<GroupStateBase&>(state) = shot;
  state.filesCompleted = shot.filesCompleted;
  state.downloadFolder = shot.folder;
  return state;
}

FileSpec specOf(const CDownloadManager::FileDownloadDetails& file) {
  FileSpec spec;
  spec.fileId = file.fileId;
  spec.location = bytesOf(file.path);
  spec.url = file.url;
  spec.size = file.size;
  spec.modified = file.modified;
  spec.expires = file.expires;
  spec.contentMd5 = file.md5Digest;
  return spec;
}

CManagerCore::Options downloadOptions() {
  CManagerCore::Options options;
  options.shortName = "down";
  options.database = "zt_downloads.db";
  options.engine = {.activity = "download", .needsMark = false, .statsSources = false};
  options.makeRunner = [](const CManagerCore::RunnerDependencies& given) {
    static CPosixFileOps fileOps;  // without state
    return std::make_unique<CDownloadRunner>(
        CDownloadRunner::Dependencies{given.loop, given.pool, given.log, given.observer, fileOps});
  };
  return options;
}

}  // namespace

class CDownloadManager::Impl : public CManagerImpl<CDownloadManager, FileDownloadDetails> {
 public:
  Impl() : CManagerImpl(downloadOptions(), {.groupState = downloadGroup, .spec = specOf}) {}
};

CDownloadManager::CDownloadManager() : impl_(std::make_unique<Impl>()) {}
CDownloadManager::~CDownloadManager() = default;

void CDownloadManager::subscribeToEvents(ICallback* callback) {
  impl_->subscribe(callback);
}
const CDownloadManager::Configuration& CDownloadManager::getConfiguration() const {
  return impl_->configuration;
}
void CDownloadManager::setConfiguration(const Configuration& configuration) {
  impl_->configuration = configuration;
  impl_->core().configure(configuration);
}

void CDownloadManager::fetchGroupsInfo(std::vector<GroupState>& groups) {
  impl_->fetchGroups(groups);
}
std::int32_t CDownloadManager::createGroup(const std::string& bucketId,
                                           const std::string& bucketType, const std::string& token,
                                           std::uint64_t tokenExpires,
                                           const std::wstring& downloadDirectory) {
  GroupIdentity identity;
  identity.bucketId = bucketId;
  identity.bucketType = bucketType;
  identity.token = token;
  identity.tokenExpires = tokenExpires;
  identity.folder = downloadDirectory;
  return impl_->engine().createGroup(std::move(identity));
}
int CDownloadManager::getGroupState(std::int32_t groupId, GroupState& state) {
  return impl_->fetchGroup(groupId, state);
}

void CDownloadManager::queueFiles(std::int32_t groupId,
                                  const std::vector<FileDownloadDetails>& files) {
  impl_->queueFiles(groupId, files);
}
void CDownloadManager::dequeueFiles(std::int32_t groupId,
                                    const std::vector<FileDownloadDetails>& files) {
  impl_->dequeueFiles(groupId, files);
}
void CDownloadManager::pauseGroup(std::int32_t groupId) {
  impl_->engine().pauseGroup(groupId);
}
void CDownloadManager::resumeGroup(std::int32_t groupId) {
  impl_->engine().resumeGroup(groupId);
}
void CDownloadManager::cancelGroup(std::int32_t groupId) {
  impl_->core().cancelGroup(groupId);
}

void CDownloadManager::startup() {
  impl_->core().startup();
}
void CDownloadManager::shutdown() {
  impl_->core().shutdown();
}

}  // namespace zt_transfers
