#include "zt_transfers/download_manager.h"

#include <gmock/gmock.h>

#include <condition_variable>
#include <mutex>

#include "sandbox.h"
#include "text/wide_bytes.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers::test {
namespace {

class CDownloadRecorder final : public CDownloadManager::ICallback {
 public:
  void onGroupStateChanged(const CDownloadManager::GroupState& state) override {
    {
      const std::lock_guard lock(mutex_);
      group_ = state;
    }
    changed_.notify_all();
  }
  void onFileStateChanged(const FileState& state) override {
    const std::lock_guard lock(mutex_);
    file_ = state;
  }
  bool waitForGroupState(GroupStateCode state) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(60), [&] { return group_.state == state; });
  }
  FileState file() const {
    const std::lock_guard lock(mutex_);
    return file_;
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  // Guarded by mutex_.
  CDownloadManager::GroupState group_;
  FileState file_;
};

class DownloadManager : public ::testing::Test {
 protected:
  void SetUp() override {
    CZtTransfersGlobalConfig::getInstance()->setAppFilesPath(widened(sandbox.folder().string()));
    manager.subscribeToEvents(&recorder);
    group = manager.createGroup("bucket", "share", "token", 0, L"/tmp/Gr\u00fc\u00dfe");
  }
  void TearDown() override {
    manager.shutdown();
    manager.subscribeToEvents(nullptr);
  }
  static CDownloadManager::FileDownloadDetails file(const std::string& id, std::uint64_t size) {
    CDownloadManager::FileDownloadDetails details;
    details.fileId = id;
    details.path = L"folder/file";
    details.size = size;
    details.url = "http://127.0.0.1:9/file?signature=secret";
    return details;
  }

  CSandbox sandbox;
  CDownloadRecorder recorder;
  CDownloadManager manager;
  std::int32_t group = -1;
};

TEST_F(DownloadManager, KeepsWhatAGroupWasCreatedWith) {
  CDownloadManager::GroupState state;
  ASSERT_EQ(manager.getGroupState(group, state), 0);
  EXPECT_EQ(state.downloadFolder, L"/tmp/Gr\u00fc\u00dfe");
  EXPECT_EQ(state.bucketId, "bucket");
  EXPECT_EQ(state.bucketType, "share");
  EXPECT_TRUE(state.empty);
  EXPECT_EQ(manager.getGroupState(group + 1, state), -1);
  auto configuration = manager.getConfiguration();
  configuration.partSize = 77;
  manager.setConfiguration(configuration);
  EXPECT_EQ(manager.getConfiguration().partSize, 77U);
}

TEST_F(DownloadManager, CountsQueuedFilesPausesAndCancels) {
  manager.pauseGroup(group);
  manager.queueFiles(group, {file("a", 100), file("b", 50)});
  CDownloadManager::GroupState state;
  manager.getGroupState(group, state);
  EXPECT_EQ(state.bytesTotal, 150U);
  EXPECT_EQ(state.state, kGroupPaused);
  manager.dequeueFiles(group, {file("a", 100)});
  manager.getGroupState(group, state);
  EXPECT_EQ(state.bytesTotal, 50U);
  manager.cancelGroup(group);
  std::vector<CDownloadManager::GroupState> groups;
  manager.fetchGroupsInfo(groups);
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_TRUE(groups[0].cancelled);
  manager.startup();
  manager.fetchGroupsInfo(groups);
  EXPECT_TRUE(groups.empty());
}

TEST_F(DownloadManager, FailsFilesAsLongAsDownloadsAreNotAvailable) {
  manager.queueFiles(group, {file("a", 100), file("b", 50)});
  manager.startup();
  ASSERT_TRUE(recorder.waitForGroupState(kGroupErrored));
  EXPECT_EQ(recorder.file().state, kFileErrored);
  manager.shutdown();
  const std::string log = contentOf(sandbox.folder() / "zt_transfers.log");
  EXPECT_THAT(log, ::testing::HasSubstr("downloads are not available in this version"));
  EXPECT_THAT(log, ::testing::Not(::testing::HasSubstr("secret")));
}

}  // namespace
}  // namespace zt_transfers::test
