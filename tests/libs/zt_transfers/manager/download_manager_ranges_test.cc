#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <numeric>

#include "download_fixture.h"

namespace zt_transfers::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr std::uint64_t kMegabyte = 1'000'000;
constexpr std::size_t kSize = 12 * kMegabyte + 1;
constexpr std::uint64_t kPiece = 2 * kMegabyte;

// Large files over lines on which one request alone is slow.
class DownloadRanges : public CDownloadTest {
 protected:
  void SetUp() override {
    CDownloadTest::SetUp();
    configure([](auto& configuration) {
      configuration.minMultipartSize = 4 * kMegabyte;
      configuration.partSize = kPiece;
    });
    server.planForAll(kLine);
  }
  File offerLarge(const std::string& id = "file") {
    File file = offer(id, content);
    file.md5Digest = md5Of(content);
    return file;
  }
  std::vector<std::string> rangesOf(const std::string& path = "/file") const {
    std::vector<std::string> ranges;
    for (const auto& request : server.requestsTo(path)) {
      const auto range = request.headers.find("range");
      ranges.push_back(range == request.headers.end() ? "" : range->second);
    }
    return ranges;
  }
  // That it came as it should, and the file once.
  void expectFile(std::int32_t group, const std::string& version) {
    EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
    EXPECT_TRUE(contentOf(target / "file") == version);
    EXPECT_EQ(recorder.group(group).bytesTransferred, version.size());
    EXPECT_LE(recorder.maxPercent(), 100.0F);
  }

  const Fault kLine = fault::slow(8 * kMegabyte);
  const std::string content = patternOf(kSize);
};

TEST_F(DownloadRanges, FetchesALargeFileInPiecesSideBySideAndNoByteTwice) {
  const auto group = downloadAll({offerLarge()});
  expectFile(group, content);
  EXPECT_EQ(server.maxOpen(), 4);
  EXPECT_EQ(server.bodyBytes(), kSize);
  EXPECT_EQ(server.requests().size(), (kSize + kPiece - 1) / kPiece);
  EXPECT_EQ(rangesOf().at(0), "bytes=0-1999999");
}

TEST_F(DownloadRanges, SplitsTheOneAnswerThatTellsTheSizeFirst) {
  File file = offerLarge();
  file.size = 0;
  Fault first = kLine;
  first.headers = {{"Accept-Ranges", "bytes"}};
  server.plan("/file", {first, kLine, kLine, kLine, kLine, kLine, kLine, kLine});
  const auto group = downloadAll({file});
  expectFile(group, content);
  EXPECT_GT(server.maxOpen(), 1);
  EXPECT_EQ(rangesOf().at(0), "");
}

TEST_F(DownloadRanges, LeavesFilesAloneThatAreSmallOrOfAServerWithoutExactVersions) {
  server.put("/small", content.substr(0, kPiece));
  File small = offer("small", content.substr(0, kPiece));
  File dated = offerLarge("dated");
  Fault noTag = fault::of(Fault::Kind::kNoETag);
  noTag.headers = {{"Last-Modified", "Mon, 01 Jan 2024 10:00:00 GMT"}};
  server.plan("/dated", {noTag, noTag, noTag});
  const auto group = downloadAll({small, dated});
  EXPECT_EQ(recorder.group(group).filesCompleted, 2);
  EXPECT_TRUE(contentOf(target / "dated") == content);
  EXPECT_THAT(rangesOf("/small"), ElementsAre(""));
  EXPECT_THAT(rangesOf("/dated"), ElementsAre("bytes=0-1999999", ""));
}

TEST_F(DownloadRanges, FetchesAgainOnlyThePieceThatFailed) {
  server.plan("/file", {kLine, kLine, fault::resetAfter(kPiece / 2), fault::status(503), kLine,
                        kLine, kLine, kLine, kLine, kLine, kLine});
  const auto group = downloadAll({offerLarge()});
  expectFile(group, content);
  EXPECT_LT(server.bodyBytes(), kSize + kPiece);
  EXPECT_EQ(log().find("attempt 1 of"), std::string::npos);
}

TEST_F(DownloadRanges, MixesNoTwoVersionsWhenOneChangesInTheMiddle) {
  const std::string other = patternOf(kSize, 9);
  File file = offer("file", content);
  server.watchBody([&](const std::string&, std::uint64_t bytes) {
    if (bytes > kPiece / 2) {
      server.put("/file", other);
    }
  });
  const auto group = downloadAll({file});
  server.watchBody({});
  expectFile(group, other);
}

TEST_F(DownloadRanges, BeginsAgainWhenARangeIsOfAnotherVersionOrPlace) {
  const auto first = offerLarge();
  server.plan("/file", {kLine, kLine, fault::ignoresIfRange("\"another\""), kLine, kLine, kLine});
  expectFile(downloadAll({first}), content);
  std::filesystem::remove(target / "file");
  server.plan("/file", {kLine, kLine, fault::of(Fault::Kind::kShiftedRange, 1000), kLine, kLine});
  expectFile(downloadAll({first}), content);
}

TEST_F(DownloadRanges, FallsBackToOneStreamWhenARangeIsAnsweredWithTheWhole) {
  const auto file = offerLarge();
  server.plan("/file", {fault::of(Fault::Kind::kNoRanges)});
  expectFile(downloadAll({file}), content);
  EXPECT_EQ(server.requests().size(), 1U);
  std::filesystem::remove(target / "file");
  const Fault whole = fault::of(Fault::Kind::kNoRanges);
  server.plan("/file", {kLine, kLine, whole, whole, whole, whole, whole, whole});
  expectFile(downloadAll({file}), content);
}

TEST_F(DownloadRanges, GivesWayToFilesThatWait) {
  configure([](auto& configuration) { configuration.maxConcurrentTransfers = 3; });
  const auto large = download({offerLarge()});
  ASSERT_TRUE(server.waitForRequests(3));
  const auto small = download(
      {offer("first", std::string(500'000, 'a')), offer("second", std::string(500'000, 'b'))});
  ASSERT_TRUE(recorder.waitForGroupState(small, kGroupCompleted));
  EXPECT_EQ(recorder.group(large).state, kGroupTransferring);
  ASSERT_TRUE(recorder.waitForGroupState(large, kGroupCompleted));
  expectFile(large, content);
}

TEST_F(DownloadRanges, GoesOnAfterAStopWithAllThePiecesThatWereThere) {
  const auto group = download({offerLarge()});
  ASSERT_TRUE(recorder.waitForGroup(
      group, [](const auto& shot) { return shot.bytesTransferred > kSize / 2; }));
  manager.shutdown();
  const std::uint64_t before = server.bodyBytes();
  const std::size_t asked = server.requests().size();
  manager.startup();
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  expectFile(group, content);
  EXPECT_LT(server.bodyBytes() - before, kSize / 2 + kPiece);
  const auto ranges = rangesOf();
  EXPECT_THAT(std::vector(ranges.begin() + static_cast<std::ptrdiff_t>(asked), ranges.end()),
              Each(HasSubstr("bytes=")));
}

TEST_F(DownloadRanges, KeepsToALimitWithOneRequest) {
  configure([](auto& configuration) { configuration.throttleBytesPerSecond = 20 * kMegabyte; });
  expectFile(downloadAll({offerLarge()}), content);
  EXPECT_EQ(server.maxOpen(), 1);
}

}  // namespace
}  // namespace zt_transfers::test
