#include "zt_transfers/upload_manager.h"

#include <utility>

#include "base/wide_bytes.h"
#include "manager/manager_impl.h"
#include "reports/report_interval.h"
#include "upload/upload_runner.h"

namespace zt_transfers {
namespace {

CUploadManager::GroupState uploadGroup(const GroupSnapshot& shot) {
  CUploadManager::GroupState state;
  static_cast<GroupStateBase&>(state) = shot;
  state.marked = shot.marked;
  return state;
}

FileSpec specOf(const CUploadManager::FileDesc& file) {
  FileSpec spec;
  spec.fileId = file.fileId;
  spec.location = bytesOf(file.fileURL);
  spec.url = file.url;
  spec.headers = file.headers;
  return spec;
}

CManagerCore::Options uploadOptions() {
  CManagerCore::Options options;
  options.shortName = "up";
  options.database = "zt_uploads.db";
  options.engine = {.activity = "upload", .needsMark = true, .statsSources = true};
  options.makeRunner = [](const CManagerCore::RunnerDependencies& given) {
    return std::make_unique<CUploadRunner>(
        UploadDependencies{given.loop, given.pool, given.log, given.observer});
  };
  return options;
}

void setReportInterval(std::uint32_t seconds) {
  CReportInterval::shared().set(std::chrono::seconds(seconds));
}

}  // namespace

class CUploadManager::Impl : public CManagerImpl<CUploadManager, FileDesc> {
 public:
  Impl() : CManagerImpl(uploadOptions(), {.groupState = uploadGroup, .spec = specOf}) {
    setReportInterval(configuration.serverTransferProgressInterval);
  }
  ~Impl() { setReportInterval(0); }
};

CUploadManager::CUploadManager() : impl_(std::make_unique<Impl>()) {}
CUploadManager::~CUploadManager() = default;

void CUploadManager::subscribeToEvents(ICallback* callback) {
  impl_->subscribe(callback);
}
const CUploadManager::Configuration& CUploadManager::getConfiguration() const {
  return impl_->configuration;
}
void CUploadManager::setConfiguration(const Configuration& configuration) {
  impl_->configuration = configuration;
  setReportInterval(configuration.serverTransferProgressInterval);
  impl_->core().configure(configuration);
}

void CUploadManager::fetchGroupsInfo(std::vector<GroupState>& groups) {
  impl_->fetchGroups(groups);
}
std::int32_t CUploadManager::createGroup(const std::string& bucketId, const std::string& bucketType,
                                         const std::string& token, std::uint64_t tokenExpires) {
  GroupIdentity identity;
  identity.bucketId = bucketId;
  identity.bucketType = bucketType;
  identity.token = token;
  identity.tokenExpires = tokenExpires;
  return impl_->engine().createGroup(std::move(identity));
}
int CUploadManager::getGroupState(std::int32_t groupId, GroupState& state) {
  return impl_->fetchGroup(groupId, state);
}

void CUploadManager::queueFiles(std::int32_t groupId, const std::vector<FileDesc>& files) {
  impl_->queueFiles(groupId, files);
}
void CUploadManager::dequeueFile(std::int32_t groupId, const std::vector<FileDesc>& files) {
  impl_->dequeueFiles(groupId, files);
}
void CUploadManager::markQueue(std::int32_t groupId) {
  impl_->engine().setMarked(groupId, true);
}
void CUploadManager::unmarkQueue(std::int32_t groupId) {
  impl_->engine().setMarked(groupId, false);
}
void CUploadManager::pauseGroup(std::int32_t groupId) {
  impl_->engine().pauseGroup(groupId);
}
void CUploadManager::resumeGroup(std::int32_t groupId) {
  impl_->engine().resumeGroup(groupId);
}
void CUploadManager::cancelGroup(std::int32_t groupId) {
  impl_->core().cancelGroup(groupId);
}

void CUploadManager::startup() {
  impl_->core().startup();
}
void CUploadManager::shutdown() {
  impl_->core().shutdown();
}

}  // namespace zt_transfers
