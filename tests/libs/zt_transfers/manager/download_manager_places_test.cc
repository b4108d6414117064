#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "base/wide_bytes.h"
#include "download_fixture.h"

namespace zt_transfers::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// Where files may go, and where not.
class DownloadPlaces : public CDownloadTest {
 protected:
  File offerAt(const std::string& id, const std::string& path) {
    File file = offer(id, "content of " + id);
    file.path = widened(path);
    return file;
  }
};

TEST_F(DownloadPlaces, FailsNamesThatWouldLeaveTheFolderAndNothingElse) {
  using namespace std::string_literals;
  const std::vector<std::string> hostile{
      "../out", "a/../../out", "/etc/zt-out", (sandbox.folder() / "out").string(),
      "",       ".",           "..",          "a//b",
      "a/",     "./b",         "a\0b"s,       "x/" + std::string(256, 'n')};
  std::vector<File> files;
  for (std::size_t at = 0; at < hostile.size(); ++at) {
    files.push_back(offerAt("hostile" + std::to_string(at), hostile[at]));
  }
  files.push_back(offerAt("fine", "..."));
  const auto group = downloadAll(files);
  EXPECT_EQ(recorder.group(group).state, kGroupErrored);
  EXPECT_EQ(recorder.group(group).filesCompleted, 1);
  EXPECT_THAT(namesThere(), ElementsAre("_..."));
  EXPECT_FALSE(fs::exists(sandbox.folder() / "out"));
  EXPECT_FALSE(fs::exists("/etc/zt-out"));
  EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(DownloadPlaces, FollowsNoSymbolicLinkOutOfTheFolder) {
  const fs::path outside = sandbox.folder() / "outside";
  fs::create_directory(outside);
  fs::create_directory_symlink(outside, target / "link");
  fs::create_symlink(outside / "planted", target / "file");
  auto through = offerAt("through", "link/file");
  auto deeper = offerAt("deeper", "link/new/file");
  const auto group = downloadAll({through, deeper, offerAt("beside", "file")});
  EXPECT_EQ(recorder.group(group).state, kGroupErrored);
  EXPECT_EQ(recorder.file("through").state, kFileErrored);
  EXPECT_EQ(recorder.file("deeper").state, kFileErrored);
  EXPECT_TRUE(fs::is_empty(outside));
  EXPECT_TRUE(fs::is_symlink(target / "file"));
  EXPECT_EQ(contentOf(target / "file (1)"), "content of beside");
}

TEST_F(DownloadPlaces, TakesTheGroupsOwnFolderAsTheUserChoseIt) {
  const fs::path real = sandbox.folder() / "real";
  fs::create_directory(real);
  fs::remove(target);
  fs::create_directory_symlink(real, target);
  const auto group = downloadAll({offerAt("file", "folder/file")});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(contentOf(real / "folder/file"), "content of file");
}

TEST_F(DownloadPlaces, MakesAMissingFolderButNotThoseAboveIt) {
  target = sandbox.folder() / "unmounted" / "folder";
  const auto group = download({offerAt("file", "file")});
  ASSERT_TRUE(waitForLog("the group's folder is not there"));
  EXPECT_FALSE(fs::exists(target.parent_path()));
  fs::create_directory(target.parent_path());
  manager.resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(contentOf(target / "file"), "content of file");
}

TEST_F(DownloadPlaces, ReplacesNothingThatIsThere) {
  std::ofstream(target / "report.txt") << "mine";
  std::ofstream(target / "report (1).txt") << "mine, too";
  fs::create_directory(target / "folder");
  auto twin = offerAt("twin", "report.txt");
  server.plan("/broken", {fault::status(404)});
  const auto group = downloadAll({offerAt("first", "report.txt"), offerAt("onFolder", "folder"),
                                  offerAt("broken", "report.txt")});
  EXPECT_EQ(recorder.group(group).filesCompleted, 2);
  EXPECT_EQ(contentOf(target / "report.txt"), "mine");
  EXPECT_EQ(contentOf(target / "report (1).txt"), "mine, too");
  EXPECT_EQ(contentOf(target / "report (2).txt"), "content of first");
  EXPECT_EQ(contentOf(target / "folder (1)"), "content of onFolder");
  EXPECT_EQ(namesThere().size(), 5U);
}

TEST_F(DownloadPlaces, LetsSeveralFilesOfOneNameArriveAtOnce) {
  std::vector<File> files;
  for (int number = 0; number < 20; ++number) {
    files.push_back(offerAt("f" + std::to_string(number), "same.txt"));
  }
  const auto group = downloadAll(files);
  EXPECT_EQ(recorder.group(group).filesCompleted, 20);
  EXPECT_EQ(namesThere().size(), 20U);
  EXPECT_TRUE(fs::exists(target / "same (19).txt"));
}

TEST_F(DownloadPlaces, TakesNamesAsBytes) {
  const std::string composed = "caf\xC3\xA9";
  const std::string decomposed = "cafe\xCC\x81";
  const std::string latin = "caf\xE9";
  const std::string longest(255, 'n');
  const std::string longestUtf8 = [] {
    std::string name;
    for (int count = 0; count < 85; ++count) {
      name += "\xE2\x82\xAC";
    }
    return name;
  }();
  std::ofstream(target / longest) << "mine";
  std::ofstream(target / longestUtf8) << "mine";
  const auto group = downloadAll({offerAt("nfc", composed), offerAt("nfd", decomposed),
                                  offerAt("latin", latin), offerAt("long", longest),
                                  offerAt("longUtf8", longestUtf8), offerAt("odd", "a\\b:*?\n ")});
  EXPECT_EQ(recorder.group(group).state, kGroupCompleted);
  EXPECT_EQ(contentOf(target / composed), "content of nfc");
  EXPECT_EQ(contentOf(target / decomposed), "content of nfd");
  EXPECT_EQ(contentOf(target / latin), "content of latin");
  EXPECT_EQ(contentOf(target / (std::string(251, 'n') + " (1)")), "content of long");
  EXPECT_EQ(contentOf(target / (longestUtf8.substr(0, 249) + " (1)")), "content of longUtf8");
  EXPECT_EQ(contentOf(target / "a\\b:*?%0A "), "content of odd");
}

TEST_F(DownloadPlaces, FailsWithAReasonWhereItMayNotWrite) {
  std::ofstream(target / "plain") << "a file";
  const auto group = downloadAll({offerAt("below", "plain/file")});
  EXPECT_EQ(recorder.group(group).state, kGroupErrored);
  EXPECT_THAT(namesThere(), ElementsAre("plain"));
  manager.shutdown();
  EXPECT_THAT(log(), HasSubstr("cannot open the folder \"plain\""));
}

// The process may write no longer files for a while.
class CFileSizeLimit {
 public:
  explicit CFileSizeLimit(rlim_t bytes) {
    signal_ = std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{.rlim_cur = bytes, .rlim_max = before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~CFileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signal_);
  }

 private:
  rlimit before_{};
  void (*signal_)(int) = nullptr;
};

TEST_F(DownloadPlaces, SaysWhyAFileCouldNotBeWrittenAndGoesOnWhenItCan) {
  const std::string content = patternOf(900'000);
  std::int32_t group = -1;
  {
    const CFileSizeLimit limit(300'000);
    group = downloadAll({offer("file", content), offerAt("small", "small")});
    EXPECT_EQ(recorder.file("file").state, kFileErrored);
    EXPECT_EQ(recorder.file("small").state, kFileCompleted);
  }
  EXPECT_THAT(log(), HasSubstr("cannot write to the file"));
  manager.resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(contentOf(target / "file"), content);
}

TEST_F(DownloadPlaces, LeavesNothingOfASmallFileThatCouldOnlyBeBegun) {
  std::int32_t group = -1;
  {
    const CFileSizeLimit limit(150'000);
    group = downloadAll({offer("file", patternOf(200'000))});
  }
  EXPECT_EQ(recorder.file("file").state, kFileErrored);
  ASSERT_EQ(namesThere().size(), 1U);
  EXPECT_EQ(namesThere()[0].front(), '.');
  manager.cancelGroup(group);
  downloadAll({offer("last", "x")});
  manager.shutdown();
  EXPECT_THAT(namesThere(), ElementsAre("last"));
}

// A disk of its own with this much room.
class CSmallDisk {
 public:
  CSmallDisk(const fs::path& place, const char* room) : place_(place), mounted_(mount(0, room)) {}
  ~CSmallDisk() {
    if (mounted_) {
      ::umount2(place_.c_str(), MNT_DETACH);
    }
  }
  bool mounted() const { return mounted_; }
  bool grow(const char* room) { return mount(MS_REMOUNT, room); }

 private:
  bool mount(unsigned long flags, const char* room) {
    return ::mount("tmpfs", place_.c_str(), "tmpfs", flags, room) == 0;
  }

  const fs::path place_;
  const bool mounted_;
};

TEST_F(DownloadPlaces, RestsWhileADiskIsFullOrGoneAndGoesOnByItself) {
  const fs::path small = sandbox.folder() / "small";
  fs::create_directory(small);
  CSmallDisk disk(small, "size=1m");
  if (!disk.mounted()) {
    GTEST_SKIP() << "only root may mount a disk";
  }
  const std::string content = patternOf(3'000'000);
  server.plan("/gone", {fault::slow(4'000'000)});
  const auto gone = download({offer("gone", content)});
  ASSERT_TRUE(recorder.waitForGroup(
      gone, [](const auto& shot) { return shot.bytesTransferred > 1'000'000; }));
  manager.pauseGroup(gone);
  ASSERT_TRUE(recorder.waitForGroupState(gone, kGroupPaused));
  fs::rename(target, sandbox.folder() / "away");
  manager.resumeGroup(gone);
  target = small;
  const auto full = download({offer("full", content)});
  ASSERT_TRUE(waitForLog("the group's folder is not there"));
  ASSERT_TRUE(waitForLog("the disk is full"));
  EXPECT_FALSE(fs::exists(sandbox.folder() / "target"));
  fs::rename(sandbox.folder() / "away", sandbox.folder() / "target");
  ASSERT_TRUE(disk.grow("size=8m"));
  ASSERT_TRUE(recorder.waitForGroupState(gone, kGroupCompleted));
  ASSERT_TRUE(recorder.waitForGroupState(full, kGroupCompleted));
  EXPECT_EQ(contentOf(sandbox.folder() / "target" / "gone"), content);
  EXPECT_EQ(contentOf(small / "full"), content);
  EXPECT_EQ(server.requestsTo("/gone").at(1).headers.count("range"), 1U);  // for the rest only
  manager.shutdown();
}

TEST_F(DownloadPlaces, TellsOfAFullDiskBeforeTheDownloadAndGoesOnOnceThereIsRoom) {
  CSmallDisk disk(target, "size=1m");
  if (!disk.mounted()) {
    GTEST_SKIP() << "only root may mount a disk";
  }
  const std::string content = patternOf(3'000'000);
  server.planForAll(fault::slow(4'000'000));
  const auto group = download({offer("file", content)});
  ASSERT_TRUE(waitForLog("the disk is full"));
  EXPECT_LT(server.bodyBytes(), content.size());
  ASSERT_TRUE(disk.grow("size=8m"));
  manager.resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(contentOf(target / "file"), content);
  EXPECT_THAT(namesThere(), ElementsAre("file"));
  manager.shutdown();
}

}  // namespace
}  // namespace zt_transfers::test
