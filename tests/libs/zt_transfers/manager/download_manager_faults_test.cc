#include <gmock/gmock.h>

#include <filesystem>

#include "download_fixture.h"
#include "untrusted_server.h"

namespace zt_transfers::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class DownloadFaults : public CDownloadTest {};

TEST_F(DownloadFaults, RetriesWhatTheServerMayGetOverAndNotARefusal) {
  std::vector<File> files;
  for (const int code : {408, 429, 500, 503, 400, 401, 403, 404, 410, 204, 304}) {
    const std::string name = std::to_string(code);
    files.push_back(offer(name, "content"));
    server.plan("/" + name, {fault::status(code)});
  }
  const auto group = downloadAll(files);
  EXPECT_EQ(recorder.group(group).state, kGroupErrored);
  EXPECT_THAT(namesThere(), ElementsAre("408", "429", "500", "503"));
  EXPECT_EQ(server.requests().size(), files.size() + 4);
}

TEST_F(DownloadFaults, LetsNoErrorDocumentReachTheFile) {
  const auto file = offer("file", patternOf(100'000));
  Fault page = fault::errorDocument("SlowDown");
  page.status = 503;
  page.body += std::string(1'000'000, ' ');  // of any length
  Fault disguised = fault::errorDocument("InternalError");
  server.plan("/file", {page, disguised});
  downloadAll({file});
  EXPECT_EQ(contentOf(target / "file"), patternOf(100'000));
  manager.shutdown();
  EXPECT_THAT(log(), HasSubstr("503 (SlowDown)"));
}

TEST_F(DownloadFaults, TakesNoOtherLengthThanAnnouncedForSuccess) {
  retryAtMost(0);
  const std::string content = patternOf(600'000);
  const std::vector<std::pair<std::string, Fault>> cases{
      {"shorter", fault::of(Fault::Kind::kLongerLength, 10)},
      {"cut", fault::of(Fault::Kind::kNoLength, 10)},
      {"extra", fault::of(Fault::Kind::kExtraBytes, 10)},
      {"closed", fault::of(Fault::Kind::kCloseWithoutResponse)},
      {"reset", fault::resetAfter(300'000)}};
  std::vector<File> files;
  for (const auto& [name, wrong] : cases) {
    files.push_back(offer(name, content));
    // A broken connection is tried once more.
    server.plan("/" + name, {wrong, fault::closeWithoutResponse()});
  }
  auto other = offer("other", content);
  other.size += 1;  // as the page was told
  files.push_back(other);
  const auto group = downloadAll(files);
  EXPECT_EQ(recorder.group(group).state, kGroupErrored);
  EXPECT_EQ(recorder.group(group).filesCompleted, 0);
  for (const std::string& name : namesThere()) {
    EXPECT_THAT(name, HasSubstr(".part"));
  }
  manager.cancelGroup(group);
  // Another group's file waits behind the removal.
  downloadAll({offer("last", "x")});
  manager.shutdown();
  EXPECT_THAT(namesThere(), ElementsAre("last"));
}

TEST_F(DownloadFaults, LetsNoOtherFileWaitForASizeThatOnlyTheServerClaims) {
  retryAtMost(0);
  auto lying = offer("lying", patternOf(3'000'000));
  lying.size = 0;
  server.plan("/lying", {fault::of(Fault::Kind::kLongerLength, std::uint64_t{1} << 55)});
  const auto group = downloadAll({lying, offer("file", "content")});
  EXPECT_EQ(recorder.group(group).filesCompleted, 1);
  manager.cancelGroup(group);
  manager.shutdown();
  EXPECT_THAT(log(), HasSubstr("cannot make room for the 36028797021963968 bytes"));
}

TEST_F(DownloadFaults, FetchesAgainWhatArrivedWithOtherContent) {
  const std::string content = patternOf(700'000);
  auto file = offer("file", content);
  file.md5Digest = md5Of(content);
  server.plan("/file", {fault::of(Fault::Kind::kCorrupt, 650'000)});
  auto wrong = offer("wrong", content);
  wrong.md5Digest = md5Of("other");
  retryAtMost(1);
  const auto group = downloadAll({file, wrong});
  EXPECT_EQ(recorder.group(group).state, kGroupErrored);
  EXPECT_EQ(contentOf(target / "file"), content);
  EXPECT_THAT(namesThere(), ElementsAre("file"));
  EXPECT_EQ(server.requestsTo("/wrong").size(), 2U);
  manager.shutdown();
  EXPECT_THAT(log(), HasSubstr("MD5 digest " + md5Of(content) + " instead of " + md5Of("other")));
}

TEST_F(DownloadFaults, LetsNoFileSufferFromWhatAnAnswerBeforeLeftOnTheConnection) {
  configure([](auto& configuration) { configuration.maxConcurrentTransfers = 1; });
  server.plan("/first", {fault::of(Fault::Kind::kMoreThanLength, 1000)});
  const auto group = downloadAll({offer("first", "a"), offer("second", "b"), offer("third", "c")});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(contentOf(target / "first"), "a");
  EXPECT_EQ(contentOf(target / "second"), "b");
}

TEST_F(DownloadFaults, FollowsRedirectsButNotForEver) {
  CFaultServer other;
  other.put("/moved", "moved content");
  auto far = offer("far", "moved content");
  server.plan("/far", {fault::status(302, {{"Location", other.url("/moved?sig=1")}})});
  auto endless = offer("endless", "x");
  const Fault again = fault::status(307, {{"Location", "/endless"}});
  server.plan("/endless", std::vector<Fault>(10, again));
  const auto group = downloadAll({far, endless});
  EXPECT_EQ(recorder.group(group).state, kGroupErrored);
  EXPECT_EQ(contentOf(target / "far"), "moved content");
  EXPECT_EQ(server.requestsTo("/endless").size(), 6U);
}

TEST_F(DownloadFaults, TrustsNoServerWithoutAValidCertificate) {
  const CUntrustedServer untrusted;
  auto file = offer("file", "content");
  file.url = untrusted.url("/file");
  auto noPlace = offer("noPlace", "x");
  noPlace.url = "ftp://127.0.0.1/file";
  download({file, noPlace});
  EXPECT_TRUE(recorder.waitForFileState("noPlace", kFileErrored));
  ASSERT_TRUE(waitForLog("certificate"));  // and the file waits: nobody can say that it is to blame
  EXPECT_NE(recorder.file("file").state, kFileErrored);
  EXPECT_EQ(untrusted.trusting(), 0);
  EXPECT_THAT(namesThere(), IsEmpty());
}

}  // namespace
}  // namespace zt_transfers::test
