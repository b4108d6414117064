#include "zt_transfers/download_manager.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/file_ops.h"
#include "base/wide_bytes.h"
#include "download/download_runner.h"
#include "manager/batches.h"
#include "manager/manager_core.h"
#include "manager/subscription.h"

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
  spec.place = bytesOf(file.path);
  spec.url = file.url;
  spec.size = file.size;
  spec.modified = file.modified;
  spec.expires = file.expires;
  spec.contentMd5 = file.md5Digest;
  return spec;
}

}  // namespace

class CDownloadManager::Impl {
 public:
  Impl()
      : core({.shortName = "down",
              .database = "zt_downloads.db",
              .engine = {.activity = "download", .needsMark = false, .statsSources = false},
              .makeRunner =
                  [this](const CManagerCore::RunnerDependencies& with) {
                    return std::make_unique<CDownloadRunner>(CDownloadRunner::Dependencies{
                        with.loop, with.pool, with.log, with.observer, fileOps});
                  },
              .deliver = [this](const TransferEvent& event) { deliver(event); }}) {
    core.configure(configuration);
  }

  void deliver(const TransferEvent& event) {
    subscription.call([&event](ICallback& callback) {
      if (const auto* group = std::get_if<GroupSnapshot>(&event)) {
        callback.onGroupStateChanged(downloadGroup(*group));
      } else {
        callback.onFileStateChanged(std::get<FileState>(event));
      }
    });
  }

  Configuration configuration;
  CSubscription<ICallback> subscription;
  CPosixFileOps fileOps;
  CManagerCore core;  // last, so that its threads end before anything else goes
};

CDownloadManager::CDownloadManager() : impl_(std::make_unique<Impl>()) {}
CDownloadManager::~CDownloadManager() = default;

void CDownloadManager::subscribeToEvents(ICallback* callback) {
  impl_->subscription.set(callback);
}

const CDownloadManager::Configuration& CDownloadManager::getConfiguration() const {
  return impl_->configuration;
}

void CDownloadManager::setConfiguration(const Configuration& configuration) {
  impl_->configuration = configuration;
  impl_->core.configure(configuration);
}

void CDownloadManager::fetchGroupsInfo(std::vector<GroupState>& groups) {
  groups.clear();
  for (const GroupSnapshot& shot : impl_->core.engine().groups()) {
    groups.push_back(downloadGroup(shot));
  }
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
  return impl_->core.openEngine().createGroup(std::move(identity));
}

int CDownloadManager::getGroupState(std::int32_t groupId, GroupState& state) {
  const auto shot = impl_->core.engine().group(groupId);
  if (!shot) {
    return -1;
  }
  state = downloadGroup(*shot);
  return 0;
}

void CDownloadManager::queueFiles(std::int32_t groupId,
                                  const std::vector<FileDownloadDetails>& files) {
  inBatches(files, [&](auto begin, auto end) {
    std::vector<FileSpec> specs;
    specs.reserve(kFilesAtOnce);
    std::transform(begin, end, std::back_inserter(specs), specOf);
    impl_->core.openEngine().queueFiles(groupId, specs);
  });
}

void CDownloadManager::dequeueFiles(std::int32_t groupId,
                                    const std::vector<FileDownloadDetails>& files) {
  inBatches(files, [&](auto begin, auto end) {
    std::vector<std::string> fileIds;
    fileIds.reserve(kFilesAtOnce);
    std::transform(begin, end, std::back_inserter(fileIds),
                   [](const auto& file) { return file.fileId; });
    impl_->core.openEngine().dequeueFiles(groupId, fileIds);
  });
}

void CDownloadManager::pauseGroup(std::int32_t groupId) {
  impl_->core.openEngine().pauseGroup(groupId);
}
void CDownloadManager::resumeGroup(std::int32_t groupId) {
  impl_->core.openEngine().resumeGroup(groupId);
}
void CDownloadManager::cancelGroup(std::int32_t groupId) {
  impl_->core.openEngine().cancelGroup(groupId);
}

void CDownloadManager::startup() {
  impl_->core.startup();
}
void CDownloadManager::shutdown() {
  impl_->core.shutdown();
}

}  // namespace zt_transfers
