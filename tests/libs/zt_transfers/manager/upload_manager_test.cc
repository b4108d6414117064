#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>

#include "upload_fixture.h"

namespace zt_transfers::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class UploadManager : public CUploadTest {};

TEST_F(UploadManager, SendsTheBytesOfEveryFileAndReportsItFromItsBeginningToItsEnd) {
  const std::string small = patternOf(1000, 1);
  const std::string large = patternOf(3 * 1024 * 1024 + 17, 2);
  const auto group =
      upload({describe("small", small), describe("large", large), describe("empty", "")});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(server.object("/small"), small);
  EXPECT_EQ(server.object("/large"), large);
  EXPECT_EQ(server.object("/empty"), "");
  const auto done = state(group);
  EXPECT_EQ(done.bytesTransferred, small.size() + large.size());
  EXPECT_EQ(done.bytesTotal, small.size() + large.size());
  EXPECT_EQ(done.percentTransferred, 100.0F);
  const auto reports = recorder.filesOf("large");
  ASSERT_GE(reports.size(), 2U);
  EXPECT_EQ(reports.front().state, kFileTransferring);
  EXPECT_EQ(reports.back().state, kFileCompleted);
  EXPECT_EQ(reports.back().groupId, group);
  EXPECT_EQ(reports.back().bucketId, "bucket");
  EXPECT_EQ(reports.back().bytesTransferred, large.size());
  const auto empty = upload({describe("alone", "")});
  ASSERT_TRUE(recorder.waitForGroupState(empty, kGroupCompleted));
  EXPECT_EQ(server.requestsTo("/alone").at(0).headers.at("content-length"), "0");
  EXPECT_EQ(recorder.lastGroup(empty).percentTransferred, 100.0F);
  EXPECT_EQ(recorder.lastFile("alone").percentTransferred, 100.0F);
}

TEST_F(UploadManager, SendsOnePutWithItsHeadersALengthAndNoExpectation) {
  auto file = describe("file", "content");
  file.headers = {{"Content-Type", "text/plain"},
                  {"X-Empty", ""},
                  {"Authorization", "Signature abc"},
                  {"Content-Length", "999"}};
  const auto group = upload({file});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  const auto requests = server.requests();
  ASSERT_EQ(requests.size(), 1U);
  EXPECT_EQ(requests[0].method, "PUT");
  const auto& headers = requests[0].headers;
  EXPECT_EQ(headers.at("content-type"), "text/plain");
  EXPECT_EQ(headers.at("authorization"), "Signature abc");
  EXPECT_EQ(headers.at("x-empty"), "");
  EXPECT_EQ(headers.at("content-length"), "7");
  EXPECT_EQ(headers.at("user-agent"), "Zantrio-Test/1.0");
  EXPECT_EQ(headers.count("expect"), 0U);
  EXPECT_EQ(headers.count("transfer-encoding"), 0U);
  const auto untyped = upload({describe("untyped", "content")});
  ASSERT_TRUE(recorder.waitForGroupState(untyped, kGroupCompleted));
  EXPECT_EQ(server.requests().back().headers.count("content-type"), 0U);
}

TEST_F(UploadManager, FindsFilesWithOddNames) {
  const std::vector<std::string> names = {"with blank",
                                          "100%",
                                          "%41",
                                          "Gr\xC3\xBC\xC3\x9F"
                                          "e",
                                          "\xFF\xFE",
                                          std::string(250, 'n'),
                                          "a#b?c",
                                          "new\nline"};
  std::vector<CUploadManager::FileDesc> files;
  for (std::size_t at = 0; at < names.size(); ++at) {
    auto file = describe(names[at], "content of " + names[at]);
    file.url = server.url("/odd" + std::to_string(at));
    files.push_back(file);
  }
  const auto group = upload(files);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  for (std::size_t at = 0; at < names.size(); ++at) {
    EXPECT_EQ(server.object("/odd" + std::to_string(at)), "content of " + names[at]);
  }
}

TEST_F(UploadManager, KeepsConnectionsOpenFromFileToFile) {
  auto configuration = manager.getConfiguration();
  configuration.maxConcurrentTransfers = 2;
  manager.setConfiguration(configuration);
  std::vector<CUploadManager::FileDesc> files;
  for (int number = 0; number < 40; ++number) {
    files.push_back(describe("file" + std::to_string(number), patternOf(2000)));
  }
  const auto group = upload(files);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  int connections = 0;
  for (const auto& request : server.requests()) {
    connections = std::max(connections, request.connection);
  }
  EXPECT_EQ(server.requests().size(), 40U);
  EXPECT_LE(connections, 4);
}

TEST_F(UploadManager, CompletesAGroupOnlyOnceItIsMarked) {
  const auto group = newGroup();
  manager.queueFiles(group, {describe("file", "x")});
  manager.startup();
  ASSERT_TRUE(recorder.waitForFileState("file", kFileCompleted));
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupIdle));
  manager.markQueue(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_TRUE(recorder.lastGroup(group).marked);
  manager.unmarkQueue(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupIdle));
  EXPECT_FALSE(state(group).marked);
}

TEST_F(UploadManager, ListsGroupsInTheOrderOfTheirCreation) {
  std::vector<std::int32_t> ids;
  for (int number = 0; number < 3; ++number) {
    ids.push_back(newGroup());
  }
  std::vector<CUploadManager::GroupState> groups(7);
  manager.fetchGroupsInfo(groups);
  ASSERT_EQ(groups.size(), 3U);
  for (std::size_t at = 0; at < groups.size(); ++at) {
    EXPECT_EQ(groups[at].id, ids[at]);
    EXPECT_EQ(groups[at].bucketType, "message");
    EXPECT_TRUE(groups[at].empty);
    EXPECT_EQ(groups[at].state, kGroupIdle);
  }
  CUploadManager::GroupState unknown;
  EXPECT_NE(manager.getGroupState(4711, unknown), 0);
}

TEST_F(UploadManager, CountsAHundredThousandQueuedFiles) {
  constexpr int kFiles = 100'000;
  const auto source = fileUrl(sandbox.file("source", patternOf(10)));
  std::vector<CUploadManager::FileDesc> files(kFiles);
  for (int number = 0; number < kFiles; ++number) {
    files[number].fileId = "file-" + std::to_string(number);
    files[number].fileURL = source;
    files[number].url = server.url("/" + std::to_string(number));
  }
  const auto group = newGroup();
  manager.pauseGroup(group);
  manager.queueFiles(group, files);
  manager.startup();
  EXPECT_TRUE(recorder.waitForGroup(
      group, [](const auto& shot) { return shot.bytesTotal == 10ULL * kFiles; }));
  EXPECT_FALSE(state(group).empty);
  manager.dequeueFile(group, files);
  EXPECT_TRUE(state(group).empty);
  EXPECT_EQ(state(group).bytesTotal, 0U);
}

TEST_F(UploadManager, WritesNeitherTokensNorSignaturesToItsLog) {
  auto file = describe("file", "x");
  file.url = server.url("/file?X-Signature=verysecret");
  file.headers = {{"Authorization", "Bearer topsecret"}};
  auto refused = describe("refused", "x");
  refused.url = server.url("/refused?X-Signature=verysecret");
  server.plan("/refused", {fault::status(403)});
  const auto group = upload({file, refused});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  manager.shutdown();
  EXPECT_THAT(log(), HasSubstr("/file"));
  EXPECT_THAT(log(), HasSubstr("403"));
  EXPECT_THAT(log(), Not(HasSubstr("secret")));
  EXPECT_EQ(server.requestsTo("/file")[0].target, "/file?X-Signature=verysecret");
}

}  // namespace
}  // namespace zt_transfers::test
