#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "base/wide_bytes.h"
#include "upload_fixture.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers::test {
namespace {

// A second manager resumes the queue of the first, as after a restart of the program.
class UploadRestart : public CUploadTest {
 protected:
  void TearDown() override {
    next.reset();
    CUploadTest::TearDown();
  }
  void restart() {
    manager.shutdown();
    server.release();
    next = std::make_unique<CUploadManager>();
    next->subscribeToEvents(&after);
    next->startup();
  }
  std::vector<CUploadManager::GroupState> groups() {
    std::vector<CUploadManager::GroupState> groups;
    next->fetchGroupsInfo(groups);
    return groups;
  }
  void allowConcurrent(std::uint32_t transfers) {
    auto configuration = manager.getConfiguration();
    configuration.maxConcurrentTransfers = transfers;
    manager.setConfiguration(configuration);
  }

  CRecorder after;
  std::unique_ptr<CUploadManager> next;
};

TEST_F(UploadRestart, GoesOnWithWhatWasNotSent) {
  server.plan("/two", {fault::stall()});
  const auto group = upload({describe("one", "first"), describe("two", "second")});
  ASSERT_TRUE(recorder.waitForFileState("one", kFileCompleted));
  ASSERT_TRUE(server.waitForRequests(2));
  restart();
  const auto found = groups();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].id, group);
  EXPECT_EQ(found[0].bucketId, "bucket");
  EXPECT_EQ(found[0].bucketType, "message");
  EXPECT_TRUE(found[0].marked);
  EXPECT_GE(found[0].bytesTransferred, 5U);
  ASSERT_TRUE(after.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(after.lastGroup(group).bytesTotal, 11U);
  EXPECT_EQ(server.object("/two"), "second");
  EXPECT_EQ(server.requestsTo("/one").size(), 1U);
  EXPECT_TRUE(after.filesOf("one").empty());
}

TEST_F(UploadRestart, DoesNotReportGroupsAgainThatWereCompleted) {
  const auto completed = upload({describe("one", "first")});
  ASSERT_TRUE(recorder.waitForGroupState(completed, kGroupCompleted));
  const auto paused = newGroup();
  manager.pauseGroup(paused);
  restart();
  ASSERT_TRUE(after.waitForGroup(paused, [](const auto& group) { return group.paused; }));
  EXPECT_EQ(after.lastGroup(completed).id, 0);
  EXPECT_EQ(groups().front().state, kGroupCompleted);
}

TEST_F(UploadRestart, KeepsPausedGroupsPausedAndUnmarkedOnesOpen) {
  const auto paused = newGroup();
  manager.pauseGroup(paused);
  manager.queueFiles(paused, {describe("paused", "x")});
  manager.markQueue(paused);
  const auto open = upload({describe("open", "x")});
  ASSERT_TRUE(recorder.waitForGroupState(open, kGroupCompleted));
  manager.unmarkQueue(open);
  restart();
  ASSERT_TRUE(after.waitForGroupState(paused, kGroupPaused));
  ASSERT_TRUE(after.waitForGroupState(open, kGroupIdle));
  EXPECT_EQ(after.lastGroup(open).percentTransferred, 100.0F);
  next->resumeGroup(paused);
  ASSERT_TRUE(after.waitForGroupState(paused, kGroupCompleted));
  EXPECT_EQ(server.requests().size(), 2U);
}

TEST_F(UploadRestart, ReportsFailedFilesOnceAndSendsThemWhenResumed) {
  server.plan("/bad", {fault::status(403)});
  const auto group = upload({describe("bad", "x"), describe("good", "y")});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  restart();
  ASSERT_TRUE(after.waitForFileState("bad", kFileErrored));
  EXPECT_EQ(after.lastGroup(group).state, kGroupErrored);
  next->resumeGroup(group);
  ASSERT_TRUE(after.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(server.requestsTo("/bad").size(), 2U);
  EXPECT_EQ(server.requestsTo("/good").size(), 1U);
}

TEST_F(UploadRestart, ForgetsCancelledGroupsAndRemovedFiles) {
  const auto cancelled = newGroup();
  manager.queueFiles(cancelled, {describe("cancelled", "x")});
  manager.cancelGroup(cancelled);
  manager.markQueue(cancelled);  // too late to bring it back
  const auto kept = newGroup();
  const auto files = std::vector{describe("a", "1"), describe("b", "22"), describe("c", "333")};
  manager.queueFiles(kept, files);
  manager.dequeueFile(kept, {files[1]});
  manager.markQueue(kept);
  restart();
  ASSERT_EQ(groups().size(), 1U);
  EXPECT_EQ(groups()[0].id, kept);
  ASSERT_TRUE(after.waitForGroupState(kept, kGroupCompleted));
  EXPECT_EQ(groups()[0].bytesTotal, 4U);
  EXPECT_EQ(server.requests().size(), 2U);
  EXPECT_GT(next->createGroup("bucket", "message", "", 0), kept);
}

TEST_F(UploadRestart, TellsWhatIsStoredBeforeItIsStarted) {
  const auto group = newGroup();
  manager.pauseGroup(group);
  manager.queueFiles(group, {describe("file", "x")});
  manager.resumeGroup(group);
  manager.shutdown();
  next = std::make_unique<CUploadManager>();
  CUploadManager::GroupState found;
  EXPECT_EQ(next->getGroupState(group, found), 0);
  EXPECT_FALSE(found.empty);
  EXPECT_FALSE(found.paused);
  EXPECT_EQ(groups().size(), 1U);
}

TEST_F(UploadRestart, BringsNoClearedGroupBackAfterACrash) {
  const auto cleared = upload({describe("file", "x")});
  ASSERT_TRUE(recorder.waitForGroupState(cleared, kGroupCompleted));
  manager.cancelGroup(cleared);
  // As the disk is now.
  const CSandbox crashed;
  std::filesystem::copy(sandbox.folder(), crashed.folder());
  CZtTransfersGlobalConfig::getInstance()->setAppFilesPath(widened(crashed.folder().string()));
  next = std::make_unique<CUploadManager>();
  EXPECT_TRUE(groups().empty());
  EXPECT_GT(next->createGroup("bucket", "message", "", 0), cleared);
  ASSERT_TRUE(recorder.waitForGroup(cleared, [](const auto& group) { return group.cancelled; }));
}

// More files than a batch has.
TEST_F(UploadRestart, SendsEveryFileOfALongQueueOnce) {
  constexpr int kFiles = 1500;
  const auto group = newGroup();
  auto file = describe("file", "content");
  std::vector<CUploadManager::FileDesc> files;
  for (int number = 0; number < kFiles; ++number) {
    file.fileId = std::to_string(number);
    file.url = server.url("/" + file.fileId);
    files.push_back(file);
  }
  manager.queueFiles(group, files);
  manager.markQueue(group);
  manager.startup();
  ASSERT_TRUE(
      recorder.waitForGroup(group, [](const auto& shot) { return shot.bytesTransferred > 3000; }));
  restart();
  ASSERT_TRUE(after.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(server.objectCount(), static_cast<std::size_t>(kFiles));
  const auto completed =
      recorder.countOfFilesIn(kFileCompleted) + after.countOfFilesIn(kFileCompleted);
  EXPECT_EQ(completed, static_cast<std::size_t>(kFiles));
}

TEST_F(UploadRestart, FindsSizesThatWereNotKnownYet) {
  const auto group = newGroup();
  manager.queueFiles(group, {describe("a", "12345")});  // nothing looks at it before startup
  manager.pauseGroup(group);
  manager.startup();
  manager.shutdown();
  restart();
  ASSERT_TRUE(after.waitForGroup(group, [](const auto& shot) { return shot.bytesTotal == 5; }));
}

// The second process is played by a second manager: the lock is on the open file.
TEST_F(UploadRestart, LeavesTheQueueToTheManagerThatHasItUntilThatHasEnded) {
  server.plan("/file", {fault::stall()});
  const auto group = upload({describe("file", "x")});
  ASSERT_TRUE(server.waitForRequests(1));
  CUploadManager second;
  CRecorder reports;
  second.subscribeToEvents(&reports);
  second.startup();
  std::vector<CUploadManager::GroupState> found;
  second.fetchGroupsInfo(found);
  EXPECT_TRUE(found.empty());
  EXPECT_THAT(log(), ::testing::HasSubstr("in use by another process"));
  const auto own = second.createGroup("bucket", "message", "", 0);
  second.queueFiles(own, {describe("own", "y")});
  second.markQueue(own);
  ASSERT_TRUE(reports.waitForGroupState(own, kGroupCompleted));
  manager.shutdown();
  ASSERT_TRUE(reports.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(server.object("/file"), "x");
  second.shutdown();
  second.subscribeToEvents(nullptr);
}

}  // namespace
}  // namespace zt_transfers::test
