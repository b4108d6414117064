#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

#include "download_fixture.h"

namespace zt_transfers::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr std::size_t kSize = 2'500'000;
constexpr std::size_t kBroken = 1'500'000;

class DownloadResumption : public CDownloadTest {
 protected:
  // The file, which breaks off first and then meets this.
  File offerBroken(const Fault& then, const Fault& first = fault::resetAfter(kBroken)) {
    File file = offer("file", content);
    file.md5Digest = md5Of(content);
    server.plan("/file", {first, then});
    return file;
  }
  std::string rangeOf(std::size_t request) {
    const auto headers = server.requestsTo("/file").at(request).headers;
    const auto range = headers.find("range");
    return range == headers.end() ? "" : range->second;
  }

  const std::string content = patternOf(kSize);
};

TEST_F(DownloadResumption, GoesOnWhereTheConnectionBroke) {
  const auto group = downloadAll({offerBroken(fault::none())});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(contentOf(target / "file"), content);
  EXPECT_EQ(server.requestsTo("/file").size(), 2U);
  EXPECT_EQ(server.requestsTo("/file").at(1).headers.at("if-range"), "\"" + md5Of(content) + "\"");
  EXPECT_NE(rangeOf(1), "");
  EXPECT_NE(rangeOf(1), "bytes=0-");
  EXPECT_LT(server.bodyBytes(), kSize + kBroken);
  EXPECT_LE(recorder.maxPercent(), 100.0F);
}

TEST_F(DownloadResumption, BeginsAgainWithAServerThatDoesNoRanges) {
  const auto group = downloadAll({offerBroken(fault::of(Fault::Kind::kNoRanges))});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(contentOf(target / "file"), content);
  EXPECT_EQ(recorder.group(group).bytesTransferred, kSize);
}

TEST_F(DownloadResumption, NeverMixesTwoVersions) {
  const std::string other = patternOf(kSize, 7);
  File file = offer("file", content);
  // The second version is there once the first answer has broken off.
  server.plan("/file", {fault::resetAfter(kBroken)});
  server.watchBody([&](const std::string&, std::uint64_t) { server.put("/file", other); });
  downloadAll({file});
  server.watchBody({});
  EXPECT_EQ(contentOf(target / "file"), other);
}

TEST_F(DownloadResumption, GoesOnWithTheVersionThatItHasWhenAPauseMeetsAnother) {
  server.plan("/file", {fault::slow(2'000'000), fault::slow(1'000)});
  const auto group = download({offer("file", content)});
  ASSERT_TRUE(recorder.waitForGroup(
      group, [](const auto& shot) { return shot.bytesTransferred > kSize / 2; }));
  manager.pauseGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupPaused));
  // Of another version only so little has come that nothing of it is written yet.
  server.put("/file", patternOf(kSize, 7));
  manager.resumeGroup(group);
  ASSERT_TRUE(waitForLog("Starting over with"));
  manager.pauseGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupPaused));
  server.put("/file", content);
  manager.resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_TRUE(contentOf(target / "file") == content);
}

TEST_F(DownloadResumption, TriesAgainAfterAnswersThatEndWithTheirHead) {
  const auto group =
      downloadAll({offerBroken(fault::resetAfter(0), fault::of(Fault::Kind::kCloseAfter))});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_TRUE(contentOf(target / "file") == content);
  EXPECT_EQ(server.requestsTo("/file").size(), 3U);
}

TEST_F(DownloadResumption, DistrustsARangeOfAnotherVersionOrPlace) {
  const auto group = downloadAll({offerBroken(fault::ignoresIfRange("\"another\""))});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(contentOf(target / "file"), content);
  EXPECT_EQ(rangeOf(2), "");
  fs::remove(target / "file");
  downloadAll({offerBroken(fault::of(Fault::Kind::kShiftedRange, 1000))});
  EXPECT_EQ(contentOf(target / "file"), content);
}

TEST_F(DownloadResumption, AsksForTheRestOfARangeThatIsShorterThanAskedFor) {
  const auto group = downloadAll({offerBroken(fault::of(Fault::Kind::kShortRange, 200'000))});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(contentOf(target / "file"), content);
}

TEST_F(DownloadResumption, TakesItForDoneWhenTheServerHasNoMore) {
  // Only the server knows the size, and it says so late.
  File file = offerBroken(fault::none(), fault::of(Fault::Kind::kNoLastChunk));
  file.size = 0;
  const auto group = downloadAll({file});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(recorder.group(group).bytesTotal, kSize);
  EXPECT_EQ(rangeOf(1), "bytes=" + std::to_string(kSize) + "-");
  EXPECT_EQ(contentOf(target / "file"), content);
}

TEST_F(DownloadResumption, TakesNoOtherLengthThanTheAnnouncedForDone) {
  retryAtMost(1);
  File file = offerBroken(fault::none(), fault::of(Fault::Kind::kNoLastChunk));
  file.size = kSize + 1;
  file.md5Digest.clear();
  const auto group = downloadAll({file});
  EXPECT_EQ(recorder.group(group).state, kGroupErrored);
  EXPECT_FALSE(fs::exists(target / "file"));
}

TEST_F(DownloadResumption, AsksOnWhenARangeDoesNotSayHowMuchThereIs) {
  const Fault noTotal = fault::of(Fault::Kind::kNoTotal, kSize / 3);
  Fault broken = fault::of(Fault::Kind::kNoLastChunk);
  broken.bytes = kSize / 4;
  File file = offer("file", content);
  file.size = 0;
  server.plan("/file", {broken, noTotal, noTotal, noTotal, noTotal});
  const auto group = downloadAll({file});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(contentOf(target / "file"), content);
}

TEST_F(DownloadResumption, TakesAnEmptyRangeForNoEnd) {
  Fault broken = fault::of(Fault::Kind::kNoLastChunk);
  broken.bytes = kSize / 4;
  File file = offer("file", content);
  file.size = 0;
  server.plan("/file", {broken, fault::of(Fault::Kind::kEmptyRange)});
  const auto group = downloadAll({file});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(contentOf(target / "file"), content);
}

TEST_F(DownloadResumption, LeavesNothingOfManyFilesThatAreCancelledAsTheyArrive) {
  std::vector<File> files;
  for (int number = 0; number < 600; ++number) {
    files.push_back(offer("file" + std::to_string(number), patternOf(2'000, unsigned(number))));
  }
  const auto group = download(files);
  ASSERT_TRUE(
      recorder.waitForGroup(group, [](const auto& shot) { return shot.filesCompleted > 50; }));
  manager.cancelGroup(group);
  const auto someHidden = [&] {
    const auto names = namesThere();
    return std::any_of(names.begin(), names.end(), [](const auto& name) { return name[0] == '.'; });
  };
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (someHidden() && std::chrono::steady_clock::now() < limit) {
    std::this_thread::yield();
  }
  EXPECT_FALSE(someHidden());  // while the manager runs
}

TEST_F(DownloadResumption, GivesUpOnAServerWhoseVersionNeverStays) {
  retryAtMost(3);
  File file = offer("file", content);
  std::vector<Fault> faults;
  for (int number = 0; number < 20; ++number) {
    Fault breaks = fault::resetAfter(kBroken);
    breaks.headers = {{"ETag", "\"" + std::to_string(number) + "\""}};
    faults.push_back(breaks);
  }
  server.plan("/file", faults);
  const auto group = downloadAll({file});
  EXPECT_EQ(recorder.group(group).state, kGroupErrored);
  EXPECT_EQ(server.requests().size(), 4U);
}

TEST_F(DownloadResumption, LastsThroughMoreBreaksThanRetriesAsLongAsItGetsOn) {
  retryAtMost(2);
  const std::string large = patternOf(9'000'000);
  File file = offer("file", large);
  server.plan("/file", std::vector<Fault>(4, fault::of(Fault::Kind::kCloseAfter, 2'000'000)));
  const auto group = downloadAll({file});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(contentOf(target / "file"), large);
}

TEST_F(DownloadResumption, PausesAndGoesOnWithWhatIsThere) {
  server.plan("/file", {fault::slow(2'000'000)});
  const auto group = download({offer("file", content)});
  ASSERT_TRUE(recorder.waitForGroup(
      group, [](const auto& shot) { return shot.bytesTransferred > kSize / 2; }));
  manager.pauseGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupPaused));
  EXPECT_GT(recorder.group(group).bytesTransferred, 0U);
  EXPECT_EQ(recorder.file("file").state, kFilePaused);
  EXPECT_EQ(namesThere().size(), 1U);
  manager.resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(contentOf(target / "file"), content);
  EXPECT_THAT(rangeOf(1), HasSubstr("bytes="));
  EXPECT_EQ(namesThere().size(), 1U);
}

TEST_F(DownloadResumption, GoesOnAfterAShutdownInTheMiddle) {
  server.plan("/file", {fault::slow(2'000'000)});
  const auto group = download({offer("file", content)});
  ASSERT_TRUE(recorder.waitForGroup(
      group, [](const auto& shot) { return shot.bytesTransferred > kSize / 2; }));
  const auto begin = std::chrono::steady_clock::now();
  manager.shutdown();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
  manager.startup();
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(contentOf(target / "file"), content);
  EXPECT_NE(rangeOf(1), "");
}

TEST_F(DownloadResumption, LeavesNothingOfAFileThatIsCancelledOrTakenOut) {
  server.planForAll(fault::slow(500'000));
  const File first = offer("first", content);
  const auto group = download({first, offer("second", content)});
  ASSERT_TRUE(recorder.waitForGroup(
      group, [](const auto& shot) { return shot.bytesTransferred > 900'000; }));
  EXPECT_EQ(namesThere().size(), 2U);
  manager.dequeueFiles(group, {first});
  manager.pauseGroup(group);
  manager.cancelGroup(group);
  server.planForAll(fault::none());
  downloadAll({offer("last", "x")});
  EXPECT_TRUE(eventually([&] { return namesThere() == std::vector<std::string>{"last"}; }));
}

TEST_F(DownloadResumption, BeginsAgainWhenThePartialFileWasTakenAwayOrReplaced) {
  server.plan("/file", {fault::slow(2'000'000), fault::none()});
  const auto group = download({offer("file", content)});
  ASSERT_TRUE(recorder.waitForGroup(
      group, [](const auto& shot) { return shot.bytesTransferred > kSize / 2; }));
  manager.pauseGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupPaused));
  const fs::path partial = target / namesThere().at(0);
  fs::remove(partial);
  const auto precious = sandbox.file("precious", "precious");
  fs::create_symlink(precious, partial);
  manager.resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(contentOf(target / "file"), content);
  EXPECT_EQ(contentOf(precious), "precious");
  EXPECT_TRUE(fs::is_symlink(partial));
}

}  // namespace
}  // namespace zt_transfers::test
