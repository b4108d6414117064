#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "upload_fixture.h"

namespace zt_transfers::test {
namespace {

class UploadFaults : public CUploadTest {
 protected:
  void retryAtMost(std::uint32_t times) {
    auto configuration = manager.getConfiguration();
    configuration.maxTransferRetries = times;
    manager.setConfiguration(configuration);
  }
};

TEST_F(UploadFaults, RetriesAfterBrokenConnectionsWithoutCountingBytesTwice) {
  const std::string content = patternOf(900'000);
  server.plan("/reset", {fault::resetAfter(300'000)});
  server.plan("/closed", {fault::closeWithoutResponse()});
  const auto group = upload({describe("reset", content), describe("closed", content)});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(server.object("/reset"), content);
  EXPECT_EQ(server.object("/closed"), content);
  for (const auto& shot : recorder.groups()) {
    EXPECT_LE(shot.bytesTransferred, shot.bytesTotal);
    EXPECT_LE(shot.percentTransferred, 100.0F);
  }
  EXPECT_EQ(recorder.lastGroup(group).bytesTransferred, 2 * content.size());
}

TEST_F(UploadFaults, TakesNoAnswerForSuccessThatCameBeforeTheBodyWasSent) {
  retryAtMost(0);
  server.plan("/file", {fault::earlyStatus(200)});
  const auto group = upload({describe("file", patternOf(30 * 1024 * 1024))});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  EXPECT_FALSE(server.object("/file").has_value());
}

TEST_F(UploadFaults, HearsARefusalOfALargeFileBeforeSendingIt) {
  server.plan("/file", {fault::earlyStatus(403)});
  const auto group = upload({describe("file", patternOf(30 * 1024 * 1024))});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  EXPECT_EQ(server.requests().size(), 1U);
  EXPECT_EQ(server.bodyBytes(), 0U);
}

TEST_F(UploadFaults, SendsAgainWhatArrivedWithOtherContent) {
  const std::string other = "\"" + md5Of("other") + "\"";
  server.plan("/file", {fault::etag(other)});
  const auto group = upload({describe("file", "content")});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(server.requestsTo("/file").size(), 2U);

  // From here on the server is known to give digests, and files are hashed on their way.
  server.plan("/next", {fault::etag(other), fault::etag(other)});
  const auto second = upload({describe("next", patternOf(3 * 1024 * 1024))});
  ASSERT_TRUE(recorder.waitForGroupState(second, kGroupCompleted));
  EXPECT_EQ(server.requestsTo("/next").size(), 3U);
}

TEST_F(UploadFaults, AcceptsTagsThatAreNoDigestAndAnyTagWhenNotVerifying) {
  server.plan("/none", {fault::noETag()});
  server.plan("/parts", {fault::etag("\"" + md5Of("parts") + "-3\"")});
  server.plan("/weak", {fault::etag("W/\"" + md5Of("content") + "\"")});
  const auto group = upload(
      {describe("none", "content"), describe("parts", "content"), describe("weak", "content")});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  auto configuration = manager.getConfiguration();
  configuration.verifyUploads = false;
  manager.setConfiguration(configuration);
  server.plan("/unverified", {fault::etag("\"" + md5Of("other") + "\"")});
  const auto second = upload({describe("unverified", "content")});
  ASSERT_TRUE(recorder.waitForGroupState(second, kGroupCompleted));
  EXPECT_EQ(server.requests().size(), 4U);
}

TEST_F(UploadFaults, FailsWhatIsNotThereAndGoesOnWithTheRest) {
  auto vanished = describe("vanished", "x");
  std::filesystem::remove(sandbox.folder() / "vanished");
  auto folder = describe("folder-url", "x");
  folder.fileURL = fileUrl(sandbox.folder());
  auto pipe = describe("pipe-url", "x");
  ASSERT_EQ(::mkfifo((sandbox.folder() / "pipe").c_str(), 0600), 0);
  pipe.fileURL = fileUrl(sandbox.folder() / "pipe");
  auto web = describe("web", "x");
  web.fileURL = L"http://example.invalid/x";
  auto noPlace = describe("no-place", "x");
  noPlace.url.clear();
  auto badHeader = describe("bad-header", "x");
  badHeader.headers = {{"X-Split", "a\r\nX-Other: b"}};
  const auto group =
      upload({vanished, folder, pipe, web, noPlace, badHeader, describe("fine", "content")});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  EXPECT_EQ(recorder.countOfFilesIn(kFileErrored), 6U);
  EXPECT_EQ(server.requests().size(), 1U);
  EXPECT_EQ(server.object("/fine"), "content");
}

// A source is changed while the server has only its beginning.
class UploadOfAChangingFile : public UploadFaults {
 protected:
  void changeWhileSent(const std::string& name,
                       const std::function<void(const std::filesystem::path&)>& change) {
    SCOPED_TRACE(name);
    const auto path = sandbox.folder() / name;
    std::atomic<bool> changed{false};
    server.planForAll(fault::slow(40 * 1024 * 1024));
    server.watchBody([&](const std::string& target, std::uint64_t bytes) {
      if (target == "/" + name && bytes > 100'000 && !changed.exchange(true)) {
        change(path);
      }
    });
    // Larger than what is read ahead and held in the sockets, and sent as a whole.
    const auto group = upload({describe(name, patternOf(60 * 1024 * 1024))});
    EXPECT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
    EXPECT_TRUE(changed);
    EXPECT_FALSE(server.object("/" + name).has_value());
    EXPECT_EQ(server.requestsTo("/" + name).size(), 1U);
    server.watchBody({});
  }
};

TEST_F(UploadOfAChangingFile, FailsHoweverItChanges) {
  namespace fs = std::filesystem;
  changeWhileSent("edited", [](const fs::path& path) {
    std::fstream(path, std::ios::in | std::ios::out | std::ios::binary) << "edited";
  });
  changeWhileSent("grown", [](const fs::path& path) { std::ofstream(path, std::ios::app) << "x"; });
  changeWhileSent("cut", [](const fs::path& path) { fs::resize_file(path, 1000); });
  changeWhileSent("deleted", [](const fs::path& path) { fs::remove(path); });
}

TEST_F(UploadFaults, FollowsARedirectWithoutCredentialsForAnotherServer) {
  CFaultServer other;
  server.plan("/file", {fault::status(307, {{"Location", other.url("/moved?sig=1")}})});
  server.plan("/near", {fault::status(308, {{"Location", "/nearby"}})});
  auto far = describe("file", "content");
  far.headers = {{"Authorization", "Bearer abc"}, {"Cookie", "a=b"}, {"X-Amz-Meta-Kept", "yes"}};
  auto near = describe("near", "content");
  near.headers = far.headers;
  const auto group = upload({far, near});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(other.object("/moved"), "content");
  const auto moved = other.requests()[0].headers;
  EXPECT_EQ(moved.count("authorization"), 0U);
  EXPECT_EQ(moved.count("cookie"), 0U);
  EXPECT_EQ(moved.at("x-amz-meta-kept"), "yes");
  EXPECT_EQ(server.requestsTo("/nearby").at(0).headers.at("authorization"), "Bearer abc");
}

TEST_F(UploadFaults, GoesThroughTheConfiguredProxy) {
  auto configuration = manager.getConfiguration();
  configuration.proxy = server.url("");
  manager.setConfiguration(configuration);
  auto file = describe("file", "content");
  file.url = "http://storage.invalid/file";
  const auto group = upload({file});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(server.object("http://storage.invalid/file"), "content");
}

TEST_F(UploadFaults, GoesOnByItselfOnceAServerThatWentAwayIsBack) {
  retryAtMost(0);
  auto gone = std::make_unique<CFaultServer>();
  const int port = gone->port();
  gone->planForAll(fault::stall());
  auto file = describe("file", "content");
  file.url = gone->url("/file");
  server.plan("/slow", {fault::slow(4'000'000)});
  const auto group = upload({file, describe("slow", patternOf(1'500'000))});
  ASSERT_TRUE(gone->waitForRequests(1));
  // By then it was told how far the other file is, too.
  ASSERT_TRUE(recorder.waitForFileState("slow", kFileCompleted));
  for (const auto& shot : recorder.filesOf("file")) {
    EXPECT_EQ(shot.bytesTransferred, 0U);
  }
  gone.reset();
  // Longer than the first wait.
  ASSERT_TRUE(waitForLog("until it can go on"));
  const std::size_t first = log().find("until it can go on");
  ASSERT_TRUE(waitForLog("until it can go on", first + 1));
  CFaultServer back(port);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(back.object("/file"), "content");
  manager.shutdown();
}

TEST_F(UploadFaults, DoesNotBlameAFileForAKeptConnectionThatTheServerHasClosed) {
  auto configuration = manager.getConfiguration();
  configuration.maxConcurrentTransfers = 1;
  manager.setConfiguration(configuration);
  server.plan("/second", {fault::resetAfter(400'000)});
  const auto group =
      upload({describe("first", "content"), describe("second", patternOf(1'000'000, 1))});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted)) << log();
  EXPECT_EQ(log().find("attempt 1"), std::string::npos) << log();
  EXPECT_EQ(server.requestsTo("/second").size(), 2U);
}

}  // namespace
}  // namespace zt_transfers::test
