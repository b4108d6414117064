#include <gtest/gtest.h>

#include <chrono>

#include "upload_fixture.h"

namespace zt_transfers::test {
namespace {

class UploadControl : public CUploadTest {
 protected:
  void allowConcurrent(std::uint32_t transfers) {
    auto configuration = manager.getConfiguration();
    configuration.maxConcurrentTransfers = transfers;
    manager.setConfiguration(configuration);
  }
  void throttle(std::uint64_t bytesPerSecond) {
    auto configuration = manager.getConfiguration();
    configuration.throttleBytesPerSecond = bytesPerSecond;
    manager.setConfiguration(configuration);
  }
  std::vector<CUploadManager::FileDesc> describeMany(int count, std::size_t size) {
    std::vector<CUploadManager::FileDesc> files;
    for (int number = 0; number < count; ++number) {
      files.push_back(describe("file" + std::to_string(number), patternOf(size)));
    }
    return files;
  }
};

TEST_F(UploadControl, BeginsMoreFilesAsSoonAsMoreAreAllowed) {
  allowConcurrent(1);
  server.planForAll(fault::hold());
  const auto group = upload(describeMany(4, 10));
  ASSERT_TRUE(server.waitForRequests(1));
  EXPECT_EQ(server.requests().size(), 1U);
  allowConcurrent(4);
  ASSERT_TRUE(server.waitForRequests(4));
  server.release();
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
}

TEST_F(UploadControl, PausesWhatRunsAndSendsItWhenResumed) {
  server.plan("/file0", {fault::stall()});
  server.plan("/file1", {fault::hold()});
  allowConcurrent(2);
  const auto group = upload(describeMany(3, 1000));
  ASSERT_TRUE(server.waitForRequests(2));
  manager.pauseGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupPaused));
  ASSERT_TRUE(recorder.waitForFileState("file0", kFilePaused));
  ASSERT_TRUE(recorder.waitForFileState("file1", kFilePaused));
  EXPECT_TRUE(state(group).paused);
  EXPECT_EQ(state(group).bytesTransferred, 0U);
  server.release();
  manager.resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(server.objectCount(), 3U);
  EXPECT_FALSE(state(group).paused);
}

TEST_F(UploadControl, PausesAGroupBetweenTwoAttempts) {
  server.plan("/file0", {fault::status(503, {{"Retry-After", "600"}})});
  const auto group = upload(describeMany(1, 10));
  ASSERT_TRUE(server.waitForRequests(1));
  // The answer is through once the file is paused from within its back-off or its attempt.
  manager.pauseGroup(group);
  ASSERT_TRUE(recorder.waitForFileState("file0", kFilePaused));
  manager.resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
}

TEST_F(UploadControl, TakesAFailedFileAgainWithANewUrl) {
  server.plan("/file", {fault::status(403)});
  auto file = describe("file", "content");
  const auto group = upload({file});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  file.url = server.url("/renewed");
  manager.queueFiles(group, {file});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(server.object("/renewed"), "content");
  EXPECT_EQ(state(group).bytesTotal, 7U);
}

TEST_F(UploadControl, StopsADequeuedFileAndTakesItOutOfTheSums) {
  allowConcurrent(1);
  server.plan("/file0", {fault::hold()});
  const auto files = describeMany(3, 1000);
  const auto group = upload(files);
  ASSERT_TRUE(server.waitForRequests(1));
  manager.dequeueFile(group, {files[0], files[1]});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(state(group).bytesTotal, 1000U);
  EXPECT_EQ(server.requestsTo("/file1").size(), 0U);
  EXPECT_EQ(server.object("/file2"), patternOf(1000));
  manager.dequeueFile(group, {files[2]});
  EXPECT_TRUE(state(group).empty);
}

TEST_F(UploadControl, CancelsAGroupForGood) {
  allowConcurrent(1);
  server.plan("/file0", {fault::stall()});
  const auto group = upload(describeMany(3, 1000));
  ASSERT_TRUE(server.waitForRequests(1));
  manager.cancelGroup(group);
  ASSERT_TRUE(recorder.waitForGroup(group, [](const auto& shot) { return shot.cancelled; }));
  manager.resumeGroup(group);
  manager.queueFiles(group, {describe("late", "x")});
  const auto other = upload({describe("other", "x")});
  ASSERT_TRUE(recorder.waitForGroupState(other, kGroupCompleted));
  EXPECT_EQ(server.requests().size(), 2U);
  std::vector<CUploadManager::GroupState> groups;
  manager.fetchGroupsInfo(groups);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_TRUE(groups[0].cancelled);
  manager.shutdown();
  manager.startup();
  manager.fetchGroupsInfo(groups);
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_EQ(groups[0].id, other);
}

TEST_F(UploadControl, LiftsALimitAtOnce) {
  throttle(1000);
  const auto group = upload(describeMany(2, 3'000'000));
  ASSERT_TRUE(server.waitForRequests(2));
  throttle(0);
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
}

TEST_F(UploadControl, SetsALimitWhileItRuns) {
  const auto group = newGroup();
  server.planForAll(fault::slow(20'000'000));
  manager.queueFiles(group, describeMany(1, 200'000'000));
  manager.startup();
  ASSERT_TRUE(recorder.waitForGroup(group, [](const auto& g) { return g.bytesTransferred > 0; }));
  throttle(100'000);
  // What the sockets hold already still arrives; then the limit holds.
  const auto atLimit = [&] {
    const std::uint64_t before = state(group).bytesTransferred;
    const auto begin = std::chrono::steady_clock::now();
    recorder.waitForGroup(
        group, [&](const auto& shot) { return shot.bytesTransferred > before + 50'000; });
    return std::chrono::steady_clock::now() - begin > std::chrono::milliseconds(250);
  };
  int tries = 0;
  while (!atLimit() && tries < 5) {
    ++tries;
  }
  EXPECT_LT(tries, 5);
}

}  // namespace
}  // namespace zt_transfers::test
