#include "zt_transfers/download_manager.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#if defined(__linux__)
#include <sys/xattr.h>
#endif

#include <chrono>
#include <filesystem>

#include "base/wide_bytes.h"
#include "download_fixture.h"

namespace zt_transfers::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class DownloadManager : public CDownloadTest {};

TEST_F(DownloadManager, KeepsWhatAGroupWasCreatedWith) {
  const auto group = manager.createGroup("bucket", "share", "token", 0, L"/tmp/Gr\u00fc\u00dfe");
  CDownloadManager::GroupState state;
  ASSERT_EQ(manager.getGroupState(group, state), 0);
  EXPECT_EQ(state.downloadFolder, L"/tmp/Gr\u00fc\u00dfe");
  EXPECT_EQ(state.bucketId, "bucket");
  EXPECT_EQ(state.bucketType, "share");
  EXPECT_TRUE(state.empty);
  EXPECT_EQ(manager.getGroupState(group + 1, state), -1);
  configure([](auto& configuration) { configuration.partSize = 77; });
  EXPECT_EQ(manager.getConfiguration().partSize, 77U);
}

TEST_F(DownloadManager, CountsQueuedFilesPausesAndCancels) {
  const auto group = newGroup();
  manager.pauseGroup(group);
  const auto first = offer("a", std::string(100, 'a'));
  manager.queueFiles(group, {first, offer("b", std::string(50, 'b'))});
  CDownloadManager::GroupState state;
  manager.getGroupState(group, state);
  EXPECT_EQ(state.bytesTotal, 150U);
  EXPECT_EQ(state.state, kGroupPaused);
  manager.dequeueFiles(group, {first});
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

TEST_F(DownloadManager, BringsFilesOfAllSizesIntoTheirFolders) {
  const std::string large = patternOf(3'000'001);
  const std::string chunk = patternOf(1024 * 1024, 2);
  auto first = offer("large", large);
  first.path = L"one/two/large.bin";
  first.md5Digest = md5Of(large);
  auto second = offer("chunk", chunk);
  second.path = L"one/chunk.bin";
  const auto group = downloadAll({first, second, offer("small", "x"), offer("empty", "")});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(recorder.group(group).filesCompleted, 4);
  EXPECT_EQ(recorder.group(group).bytesTransferred, large.size() + chunk.size() + 1);
  EXPECT_EQ(contentOf(target / "one/two/large.bin"), large);
  EXPECT_EQ(contentOf(target / "one/chunk.bin"), chunk);
  EXPECT_EQ(contentOf(target / "small"), "x");
  EXPECT_EQ(std::filesystem::file_size(target / "empty"), 0U);
  EXPECT_THAT(namesThere(), ElementsAre("empty", "one", "one/chunk.bin", "one/two",
                                        "one/two/large.bin", "small"));
  EXPECT_EQ(server.requestsTo("/small").at(0).headers.at("user-agent"), "Zantrio-Test/1.0");
}

TEST_F(DownloadManager, SetsTheTimeAndTheModeThatTheUserWants) {
  const mode_t before = ::umask(0027);
  auto file = offer("file", "content");
  file.path = L"folder/file";
  file.modified = 1'600'000'000'250;
  file.url += "?X-Amz-Signature=secret";
  downloadAll({file});
  ::umask(before);
  struct stat status {};
  ASSERT_EQ(::stat((target / "folder/file").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
  EXPECT_EQ(status.st_mtim.tv_sec, 1'600'000'000);
  EXPECT_EQ(status.st_mtim.tv_nsec, 250'000'000);
#if defined(__linux__)
  std::string origin(200, '\0');
  const ssize_t length = ::getxattr((target / "folder/file").c_str(), "user.xdg.origin.url",
                                    origin.data(), origin.size());
  if (length >= 0 || errno != ENOTSUP) {
    ASSERT_GE(length, 0);
    EXPECT_EQ(origin.substr(0, static_cast<std::size_t>(length)), server.url("/file"));
  }
#endif
  ASSERT_EQ(::stat((target / "folder").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0750U);
}

TEST_F(DownloadManager, HidesNoFileAndMakesNoneOutOfTwo) {
  auto hidden = offer("hidden", "1");
  hidden.path = L".config/.x";
  auto like = offer("like", "2");
  like.path = L"_.config/.x";
  auto control = offer("control", "3");
  control.path = L"-\nb";
  downloadAll({hidden, like, control});
  EXPECT_THAT(namesThere(),
              ElementsAre("_-%0Ab", "_.config", "_.config/_.x", "__.config", "__.config/_.x"));
}

TEST_F(DownloadManager, TakesAnySizeWhenItIsNotTold) {
  auto announced = offer("announced", patternOf(700'000));
  announced.size = 0;
  auto unannounced = offer("unannounced", patternOf(700'000, 2));
  unannounced.size = 0;
  server.plan("/unannounced", {fault::of(Fault::Kind::kNoLength)});
  const auto group = downloadAll({announced, unannounced});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(recorder.group(group).bytesTotal, 1'400'000U);
  EXPECT_EQ(contentOf(target / "unannounced"), patternOf(700'000, 2));
}

TEST_F(DownloadManager, TakesNoBodyWithoutALengthForCompleteThatWasCut) {
  retryAtMost(0);
  const std::string content = patternOf(700'000);
  auto cut = offer("cut", content);
  auto unclear = offer("unclear", content);
  cut.size = unclear.size = 0;
  server.plan("/cut", {fault::of(Fault::Kind::kNoLength, 10)});
  server.plan("/unclear",
              {fault::of(Fault::Kind::kNoLength, 10), fault::of(Fault::Kind::kNoRanges)});
  downloadAll({cut, unclear});
  EXPECT_EQ(contentOf(target / "cut"), content);
  EXPECT_EQ(recorder.file("unclear").state, kFileErrored);
}

TEST_F(DownloadManager, DownloadsManySmallFilesOverFewConnectionsAndChecksEach) {
  const auto contentOfNumber = [](int number) {
    return patternOf(static_cast<std::size_t>(number) * 20, unsigned(number));
  };
  std::vector<File> files;
  for (int number = 0; number < 300; ++number) {
    files.push_back(offer("f" + std::to_string(number), contentOfNumber(number)));
    files.back().md5Digest = md5Of(contentOfNumber(number == 77 ? 78 : number));
  }
  retryAtMost(0);
  const auto group = downloadAll(files);
  EXPECT_EQ(recorder.group(group).filesCompleted, 299);
  EXPECT_EQ(recorder.file("f77").state, kFileErrored);
  EXPECT_EQ(namesThere().size(), 299U);
  for (int number = 0; number < 300; ++number) {
    if (number != 77) {
      EXPECT_EQ(contentOf(target / ("f" + std::to_string(number))), contentOfNumber(number));
    }
  }
  EXPECT_LE(server.requests().back().connection, 16);
  EXPECT_LE(server.maxOpen(), 8);
}

TEST_F(DownloadManager, KeepsToTheLimitAndSharesIt) {
  configure([](auto& configuration) { configuration.throttleBytesPerSecond = 1'000'000; });
  const auto begin = std::chrono::steady_clock::now();
  const auto group =
      downloadAll({offer("one", patternOf(1'000'000)), offer("two", patternOf(1'000'000))});
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_GE(took.count(), 1.7);
  EXPECT_EQ(contentOf(target / "two"), patternOf(1'000'000));
}

TEST_F(DownloadManager, FailsWhatHasExpiredWithThatReasonAndGoesOn) {
  auto expired = offer("expired", "content");
  expired.expires = 1'000'000;
  expired.url += "?signature=secret";
  auto group = downloadAll({expired, offer("fine", "content")});
  EXPECT_EQ(recorder.group(group).state, kGroupErrored);
  EXPECT_EQ(recorder.file("expired").state, kFileErrored);
  EXPECT_THAT(namesThere(), ElementsAre("fine"));
  group = newGroup(1'000'000);
  manager.queueFiles(group, {offer("late", "content")});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  EXPECT_THAT(server.requestsTo("/late"), IsEmpty());
  manager.shutdown();
  EXPECT_THAT(log(), HasSubstr("its URL has expired"));
  EXPECT_THAT(log(), HasSubstr("token has expired"));
  EXPECT_THAT(log(), Not(HasSubstr("secret")));
}

TEST_F(DownloadManager, ReportsAGroupToBeCompletedOnce) {
  const File file = offer("file", "content");
  const auto group = downloadAll({file, offer("other", "content")});
  manager.pauseGroup(group);
  manager.resumeGroup(group);
  manager.dequeueFiles(group, {file});
  downloadAll({offer("last", "content")});
  EXPECT_EQ(recorder.completions(group), 1);
}

TEST_F(DownloadManager, SurvivesBeingStoppedAtAnyMoment) {
  std::vector<File> files;
  for (int number = 0; number < 6; ++number) {
    files.push_back(offer("file" + std::to_string(number), patternOf(100'000, unsigned(number))));
  }
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(8);
  int rounds = 0;
  for (; rounds < 200 && std::chrono::steady_clock::now() < end; ++rounds) {
    std::filesystem::remove_all(target);
    CDownloadManager stopped;
    CDownloadRecorder reports;
    stopped.subscribeToEvents(&reports);
    const auto group = stopped.createGroup("b", "t", "", 0, widened(target.string()));
    stopped.startup();
    stopped.queueFiles(group, files);
    reports.waitForGroup(group, [&](const auto& shot) {
      return shot.bytesTransferred >= 100'000U * static_cast<unsigned>(rounds % 6);
    });
    if (rounds % 4 == 1) {
      stopped.pauseGroup(group);
    } else if (rounds % 4 == 2) {
      stopped.cancelGroup(group);
    }
    stopped.shutdown();
    if (rounds % 4 == 1) {
      stopped.resumeGroup(group);
    }
    if (rounds % 4 != 2) {
      stopped.startup();
      ASSERT_TRUE(reports.waitForGroupState(group, kGroupCompleted));
      ASSERT_EQ(namesThere().size(), files.size()) << rounds;
    }
    stopped.subscribeToEvents(nullptr);
  }
  EXPECT_GE(rounds, 10);
}

}  // namespace
}  // namespace zt_transfers::test
