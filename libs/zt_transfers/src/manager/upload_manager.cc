#include "zt_transfers/upload_manager.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/wide_bytes.h"
#include "manager/batches.h"
#include "manager/manager_core.h"
#include "manager/subscription.h"
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
  spec.place = bytesOf(file.fileURL);
  spec.url = file.url;
  spec.headers = file.headers;
  return spec;
}

}  // namespace

class CUploadManager::Impl {
 public:
  Impl()
      : core({.shortName = "up",
              .database = "zt_uploads.db",
              .engine = {.activity = "upload", .needsMark = true, .statsSources = true},
              .makeRunner =
                  [](const CManagerCore::RunnerDependencies& parts) {
                    return std::make_unique<CUploadRunner>(
                        UploadDependencies{parts.loop, parts.pool, parts.log, parts.observer});
                  },
              .deliver = [this](const TransferEvent& event) { deliver(event); }}) {
    configure();
  }
  ~Impl() { CReportInterval::shared().set(std::chrono::seconds::zero()); }

  void configure() {
    CReportInterval::shared().set(
        std::chrono::seconds(configuration.serverTransferProgressInterval));
    core.configure(configuration);
  }

  void deliver(const TransferEvent& event) {
    subscription.call([&event](ICallback& callback) {
      if (const auto* group = std::get_if<GroupSnapshot>(&event)) {
        callback.onGroupStateChanged(uploadGroup(*group));
      } else {
        callback.onFileStateChanged(std::get<FileState>(event));
      }
    });
  }

  Configuration configuration;
  CSubscription<ICallback> subscription;
  CManagerCore core;  // last, so that its threads end before anything else goes
};

CUploadManager::CUploadManager() : impl_(std::make_unique<Impl>()) {}
CUploadManager::~CUploadManager() = default;

void CUploadManager::subscribeToEvents(ICallback* callback) {
  impl_->subscription.set(callback);
}

const CUploadManager::Configuration& CUploadManager::getConfiguration() const {
  return impl_->configuration;
}

void CUploadManager::setConfiguration(const Configuration& configuration) {
  impl_->configuration = configuration;
  impl_->configure();
}

void CUploadManager::fetchGroupsInfo(std::vector<GroupState>& groups) {
  groups.clear();
  for (const GroupSnapshot& shot : impl_->core.engine().groups()) {
    groups.push_back(uploadGroup(shot));
  }
}

std::int32_t CUploadManager::createGroup(const std::string& bucketId, const std::string& bucketType,
                                         const std::string& token, std::uint64_t tokenExpires) {
  GroupIdentity identity;
  identity.bucketId = bucketId;
  identity.bucketType = bucketType;
  identity.token = token;
  identity.tokenExpires = tokenExpires;
  return impl_->core.openEngine().createGroup(std::move(identity));
}

int CUploadManager::getGroupState(std::int32_t groupId, GroupState& state) {
  const auto shot = impl_->core.engine().group(groupId);
  if (!shot) {
    return -1;
  }
  state = uploadGroup(*shot);
  return 0;
}

void CUploadManager::queueFiles(std::int32_t groupId, const std::vector<FileDesc>& files) {
  inBatches(files, [&](auto begin, auto end) {
    std::vector<FileSpec> specs;
    specs.reserve(kFilesAtOnce);
    std::transform(begin, end, std::back_inserter(specs), specOf);
    impl_->core.openEngine().queueFiles(groupId, specs);
  });
}

void CUploadManager::dequeueFile(std::int32_t groupId, const std::vector<FileDesc>& files) {
  inBatches(files, [&](auto begin, auto end) {
    std::vector<std::string> fileIds;
    fileIds.reserve(kFilesAtOnce);
    std::transform(begin, end, std::back_inserter(fileIds),
                   [](const auto& file) { return file.fileId; });
    impl_->core.openEngine().dequeueFiles(groupId, fileIds);
  });
}

void CUploadManager::markQueue(std::int32_t groupId) {
  impl_->core.openEngine().setMarked(groupId, true);
}
void CUploadManager::unmarkQueue(std::int32_t groupId) {
  impl_->core.openEngine().setMarked(groupId, false);
}
void CUploadManager::pauseGroup(std::int32_t groupId) {
  impl_->core.openEngine().pauseGroup(groupId);
}
void CUploadManager::resumeGroup(std::int32_t groupId) {
  impl_->core.openEngine().resumeGroup(groupId);
}
void CUploadManager::cancelGroup(std::int32_t groupId) {
  impl_->core.openEngine().cancelGroup(groupId);
}

void CUploadManager::startup() {
  impl_->core.startup();
}
void CUploadManager::shutdown() {
  impl_->core.shutdown();
}

}  // namespace zt_transfers
