#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

#include "parts_fixture.h"

namespace zt_transfers::test {
namespace {

using ::testing::SizeIs;

constexpr const char* kAnyPart = "*partNumber=*";

class MultipartUpload : public CPartsTest {};

TEST_F(MultipartUpload, SendsEveryByteOfFilesOfEverySizeAroundTheParts) {
  configure([](auto& configuration) { configuration.minMultipartSize = 1000; });
  const int parts = count("PUT", kAnyPart);
  std::vector<CUploadManager::FileDesc> files;
  std::vector<std::string> contents;
  std::uint64_t expected = 0;
  for (const std::size_t size : {std::size_t{0}, std::size_t{999}, std::size_t{1000}, kPart - 1,
                                 kPart, kPart + 1, 2 * kPart, 9 * kPart + 17}) {
    contents.push_back(patternOf(size));
    files.push_back(describe("file" + std::to_string(size), contents.back()));
    expected += size < 1000 ? 0 : (size + kPart - 1) / kPart;
  }
  uploadAll(files);
  for (std::size_t at = 0; at < files.size(); ++at) {
    EXPECT_TRUE(arrived(files[at].fileId) == contents[at]) << files[at].fileId;
  }
  EXPECT_EQ(counted(parts), expected);
  EXPECT_THAT(sessions(), SizeIs(0));
}

TEST_F(MultipartUpload, AddsItsQueryToThatOfASignedUrlAndSendsThePagesHeaders) {
  auto file = describe("file", patternOf(3 * kPart));
  file.url += "?token=" + token_;
  file.headers = {{"Content-Type", "text/plain"}, {"Content-MD5", md5Of("of the whole")}};
  uploadAll({file});
  EXPECT_TRUE(arrived("file") == patternOf(3 * kPart));
}

TEST_F(MultipartUpload, CountsNoByteTwiceAndNeverGoesBackWhenNothingFails) {
  fault("PUT", kAnyPart, R"("type":"rate","bytesPerSecond":200000)");
  uploadAll({describe("file", patternOf(6 * kPart + 100))});
  const auto reports = recorder.filesOf("file");
  EXPECT_GT(reports.size(), 3U);
  EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end(), [](const auto& a, const auto& b) {
    return a.bytesTransferred < b.bytesTransferred;
  }));
  EXPECT_EQ(reports.back().bytesTransferred, 6 * kPart + 100);
}

TEST_F(MultipartUpload, KeepsTheLimitOverAllParts) {
  configure([](auto& configuration) { configuration.throttleBytesPerSecond = 8 * kPart; });
  const auto begin = std::chrono::steady_clock::now();
  uploadAll({describe("file", patternOf(16 * kPart))});
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1700));
}

TEST_F(MultipartUpload, SendsOnlyThePartAgainThatFailed) {
  fault("PUT", "*partNumber=2&*", R"("type":"status","status":503,"count":1)");
  fault("PUT", "*partNumber=4&*", R"("type":"reset","afterBytes":1000,"count":1)");
  fault("PUT", "*partNumber=6&*", R"("type":"etag","count":1)");
  const int good = count("PUT", kAnyPart);
  const int begun = count("POST", "uploads*");
  uploadAll({describe("file", patternOf(8 * kPart))});
  EXPECT_TRUE(arrived("file") == patternOf(8 * kPart));
  // The sixth is there all the same, and the list of parts tells its true digest.
  EXPECT_EQ(counted(good), 7U);
  EXPECT_EQ(counted(begun), 1U);
}

TEST_F(MultipartUpload, GivesUpWhenOnePartNeverArrivesAndGoesOnWithTheRestWhenResumed) {
  configure([](auto& configuration) { configuration.maxTransferRetries = 0; });
  fault("PUT", "*partNumber=3&*", R"("type":"status","status":500)");
  const int good = count("PUT", kAnyPart);
  const auto group = upload({describe("file", patternOf(6 * kPart))});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  EXPECT_GE(recorder.lastGroup(group).bytesTransferred, 2 * kPart);
  const auto arrivedBefore = counted(good);
  EXPECT_EQ(request("DELETE", "/faults").status, 204);
  const int rest = count("PUT", kAnyPart);
  manager->resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(arrivedBefore + counted(rest), 6U);
  EXPECT_TRUE(arrived("file") == patternOf(6 * kPart));
}

TEST_F(MultipartUpload, SendsWithOnePutWhereTheServerTakesNoPartsAndAsksOnlyOnce) {
  options_.multipart = false;
  restart();
  configure([](auto& configuration) { configuration.maxConcurrentTransfers = 1; });
  const int asked = count("POST", "uploads*");
  uploadAll({describe("a", patternOf(2 * kPart)), describe("b", patternOf(kPart)),
             describe("c", patternOf(kPart + 1))});
  EXPECT_TRUE(arrived("a") == patternOf(2 * kPart));
  EXPECT_TRUE(arrived("c") == patternOf(kPart + 1));
  EXPECT_EQ(counted(asked), 1U);
}

TEST_F(MultipartUpload, RemembersARefusalThatDoesNotSayWhyOnceThePutWorked) {
  configure([](auto& configuration) { configuration.maxConcurrentTransfers = 1; });
  fault("POST", "uploads*", R"("type":"status","status":400)");
  uploadAll({describe("a", patternOf(kPart)), describe("b", patternOf(kPart))});
  EXPECT_TRUE(arrived("b") == patternOf(kPart));
  EXPECT_EQ(counted(1), 1U);
}

TEST_F(MultipartUpload, TakesARefusalForFinalOnlyWhenTheWholeFileIsRefusedToo) {
  configure([](auto& configuration) { configuration.maxConcurrentTransfers = 1; });
  fault("POST", "uploads*", R"("type":"status","status":403)");
  fault("PUT", "", R"("type":"status","status":403,"count":1)");
  const auto group =
      upload({describe("refused", patternOf(kPart)), describe("whole", patternOf(kPart))});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  EXPECT_EQ(recorder.lastFile("refused").state, kFileErrored);
  EXPECT_TRUE(arrived("whole") == patternOf(kPart));
}

TEST_F(MultipartUpload, TakesNoAnswerForSuccessThatDoesNotConfirmTheWhole) {
  fault(
      "POST", "uploadId=*",
      R"("type":"status","status":200,"body":"<Error><Code>InternalError</Code></Error>","count":1)");
  fault("POST", "uploadId=*", R"("type":"status","status":200,"body":" ","count":1)");
  const int parts = count("PUT", kAnyPart);
  uploadAll({describe("file", patternOf(3 * kPart))});
  EXPECT_TRUE(arrived("file") == patternOf(3 * kPart));
  EXPECT_EQ(counted(parts), 3U);
}

TEST_F(MultipartUpload, SendsAllOfItAgainWhenTheWholeHasAnotherTag) {
  fault("POST", "uploadId=*",
        R"("type":"status","status":200,"count":1,"body":"<CompleteMultipartUploadResult><ETag>)" +
            md5Of("other") + R"(-3</ETag></CompleteMultipartUploadResult>")");
  const int parts = count("PUT", kAnyPart);
  uploadAll({describe("file", patternOf(3 * kPart))});
  EXPECT_TRUE(arrived("file") == patternOf(3 * kPart));
  EXPECT_EQ(counted(parts), 6U);
}

TEST_F(MultipartUpload, GivesUpWithItsRetriesWhenTheServerNeverPutsThePartsTogether) {
  configure([](auto& configuration) { configuration.maxTransferRetries = 1; });
  const int parts = count("PUT", kAnyPart);
  std::uint64_t expected = 0;
  for (const std::string& response :
       {std::string(R"("status":404)"),
        R"("status":200,"body":"<CompleteMultipartUploadResult><ETag>)" + md5Of("other") +
            R"(-3</ETag></CompleteMultipartUploadResult>")"}) {
    fault("POST", "uploadId=*", R"("type":"status","count":2,)" + response);
    const auto group = upload({describe("file", patternOf(3 * kPart))});
    ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored)) << response;
    expected += 6;
    EXPECT_EQ(counted(parts), expected) << response;
    manager->cancelGroup(group);
  }
}

TEST_F(MultipartUpload, FailsWithoutMixingVersionsWhenTheFileChangesWhileItIsSent) {
  configure([](auto& configuration) { configuration.maxConcurrentTransfers = 1; });
  fault("PUT", "*partNumber=4&*", R"("type":"stall","milliseconds":1000,"count":1)");
  const auto group = upload({describe("file", patternOf(6 * kPart))});
  ASSERT_TRUE(waitForMoreThan(group, 3 * kPart));
  std::fstream(sandbox.folder() / "file", std::ios::in | std::ios::out) << "edited";
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  EXPECT_TRUE(waitForNoSession());
  EXPECT_FALSE(std::filesystem::exists(arrivedFile("file")));
  manager->resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_TRUE(arrived("file") == contentOf(sandbox.folder() / "file"));
}

TEST_F(MultipartUpload, LeavesNoSessionBehindWhenItIsCancelledOrTakenOut) {
  stallPart(2);
  fault("POST", "uploads*", R"("type":"delay","milliseconds":300,"count":1)");
  const auto beginning = upload({describe("beginning", patternOf(3 * kPart))});
  ASSERT_TRUE(recorder.waitForFileState("beginning", kFileTransferring));
  manager->cancelGroup(beginning);
  const auto dequeued = describe("dequeued", patternOf(3 * kPart));
  const auto group = upload({dequeued});
  ASSERT_TRUE(waitForMoreThan(group, kPart));
  manager->dequeueFile(group, {dequeued});
  EXPECT_TRUE(waitForNoSession());
  // And one that was paused.
  stallPart(3);
  const auto paused = upload({describe("paused", patternOf(4 * kPart))});
  ASSERT_TRUE(waitForMoreThan(paused, kPart));
  manager->pauseGroup(paused);
  ASSERT_TRUE(recorder.waitForGroupState(paused, kGroupPaused));
  EXPECT_THAT(sessions(), SizeIs(1));
  manager->cancelGroup(paused);
  EXPECT_TRUE(waitForNoSession());
}

TEST_F(MultipartUpload, AbortsUntilTheServerHasHeardItAlsoAfterTheNextStart) {
  stallPart(2);
  fault("DELETE", "uploadId=*", R"("type":"status","status":503)");
  const int unheard = 2;  // the rule just made
  const auto group = upload({describe("file", patternOf(3 * kPart))});
  ASSERT_TRUE(waitForMoreThan(group, kPart));
  manager->cancelGroup(group);
  ASSERT_TRUE(eventually([&] { return counted(unheard) == 2; }));
  manager->shutdown();
  EXPECT_THAT(sessions(), SizeIs(1));
  request("DELETE", "/faults");
  restartManager();
  EXPECT_TRUE(waitForNoSession());
}

}  // namespace
}  // namespace zt_transfers::test
