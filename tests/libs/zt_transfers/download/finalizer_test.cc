#include "download/finalizer.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <future>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include "base/file_status.h"
#include "base/worker_pool.h"
#include "download/disk_verdict.h"
#include "download/small_files.h"
#include "download/target_folder.h"
#include "sandbox.h"
#include "troubled_disk.h"

namespace zt_transfers::test {
namespace {

using Kind = AttemptOutcome::Kind;
using ::testing::ElementsAre;

// A disk that fails at the right moment.
class CFailingFileOps final : public CPosixFileOps {
 public:
  bool hasFileSystemSync(int /*file*/) override { return isLocal; }
  bool sync(int file) override {
    synced.insert(statusOf(file).st_ino);
    const bool isFolder = S_ISDIR(statusOf(file).st_mode);
    const bool fails = isFolder ? failingFolderSyncs > 0 : isLost(file);
    failingFolderSyncs -= fails && isFolder ? 1 : 0;
    return fails ? fail() : CPosixFileOps::sync(file);
  }
  bool syncFileSystem(int file) override {
    ++fileSystemSyncs;
    return CPosixFileOps::syncFileSystem(file);
  }
  bool contentWritten(int file) override {
    return isLost(file) ? fail() : CPosixFileOps::contentWritten(file);
  }

  int failingFolderSyncs = 0;
  ino_t lostFile = 0;  // its bytes cannot be written
  int fileSystemSyncs = 0;
  bool isLocal = true;
  std::set<ino_t> synced;

 private:
  bool isLost(int file) const { return statusOf(file).st_ino == lostFile; }
  static bool fail() {
    errno = EIO;
    return false;
  }
};

constexpr char kMd5OfFile[] = "8c7dd922ad47494fc02c388e12c00eac";  // of the text "file"

class Finalization : public ::testing::Test {
 protected:
  std::shared_ptr<CPartialFile> newFile(const std::string& name, const std::string& key = "",
                                        const std::string& md5 = "") {
    CPartialFile::Plan plan;
    plan.folder = sandbox.folder().string();
    plan.target = parseTargetPath(name);
    plan.key = name + key;
    plan.md5 = md5;
    return std::make_shared<CPartialFile>(ops, std::move(plan));
  }
  // One that has arrived.
  std::shared_ptr<CPartialFile> arrived(const std::string& name, const std::string& key = "") {
    auto file = newFile(name, key);
    file->write(0, name.data(), name.size());
    EXPECT_FALSE(file->verify(name.size()).has_value());
    return file;
  }
  ino_t inodeOf(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(::stat((sandbox.folder() / name).c_str(), &status), 0) << name;
    return status.st_ino;
  }
  // As in a restored backup.
  void copy(const std::string& name) const {
    const std::filesystem::path path = sandbox.folder() / name;
    std::filesystem::copy_file(path, path.string() + ".copy");
    std::filesystem::rename(path.string() + ".copy", path);
  }
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(sandbox.folder())) {
      found.push_back(entry.path().filename().string());
    }
    std::sort(found.begin(), found.end());
    return found;
  }

  std::function<void(const std::vector<AttemptEnd>&)> keepEnds() {
    return [this](const std::vector<AttemptEnd>& told) {
      ends.insert(ends.end(), told.begin(), told.end());
    };
  }

  CSandbox sandbox;
  CFailingFileOps ops;
  std::vector<AttemptEnd> ends;
};

TEST_F(Finalization, NotesAFileAsSyncedBeforeItGetsItsName) {
  const auto progress = std::make_shared<AttemptProgress>();
  std::vector<AttemptId> noted;
  const auto note = [&](const std::vector<AttemptId>& attempts) {
    noted = attempts;
    EXPECT_EQ(names().at(0).front(), '.');
    EXPECT_EQ(progress->resume().download().size, 4U);
    EXPECT_THAT(progress->resume().download().durable, ElementsAre(ByteSpan{0, 4}));
    EXPECT_EQ(progress->resume().download().finalName, "file");
  };
  CFinalizer finalizer({.synced = note, .finalized = keepEnds()});
  finalizer.finalize({{7, arrived("file"), progress}});
  ASSERT_EQ(ends.size(), 1U);
  EXPECT_EQ(ends[0].attemptId, 7U);
  EXPECT_EQ(ends[0].outcome.kind, Kind::kDone);
  EXPECT_THAT(noted, ElementsAre(7U));
  EXPECT_THAT(names(), ElementsAre("file"));
}

TEST_F(Finalization, NamesNoFileTwiceWhenItsFolderCannotBeSynced) {
  CFinalizer finalizer({.synced = [](const auto&) {}, .finalized = keepEnds()});
  const auto progress = std::make_shared<AttemptProgress>();
  ops.failingFolderSyncs = 2;
  finalizer.finalize({{1, arrived("file"), progress}});
  ASSERT_EQ(ends.size(), 1U);
  EXPECT_EQ(ends[0].outcome.kind, Kind::kRetry);
  EXPECT_EQ(ops.failingFolderSyncs, 1);
  const DownloadResume rest = progress->resume().download();
  auto again = newFile("file");
  EXPECT_THROW(again->reopen(rest), std::system_error);
  EXPECT_EQ(again->resume(), rest);  // for the next attempt
  EXPECT_EQ(newFile("file")->reopen(rest), CPartialFile::Found::kFinalized);
  EXPECT_THAT(names(), ElementsAre("file"));
}

TEST_F(Finalization, NoticesWhichOfManyFilesCouldNotBeWrittenBeforeTheSyncOfAll) {
  CFinalizer finalizer({.synced = [](const auto&) {}, .finalized = keepEnds()});
  std::vector<CFinalizer::Arrival> arrivals;
  for (const char* name : {"a", "b", "c", "lost"}) {
    arrivals.push_back({arrivals.size(), arrived(name), std::make_shared<AttemptProgress>()});
  }
  ops.lostFile = inodeOf(arrivals.back().file->resume().partialPath);
  finalizer.finalize(std::move(arrivals));
  ASSERT_EQ(ends.size(), 4U);
  EXPECT_EQ(std::count_if(ends.begin(), ends.end(),
                          [](const auto& end) { return end.outcome.kind == Kind::kDone; }),
            3);
  EXPECT_EQ(ends[3].outcome.kind, Kind::kRetry);
  EXPECT_THAT(names(), ElementsAre("a", "b", "c"));
}

TEST_F(Finalization, CountsBytesAsMissingThatAFailedSyncMayHaveLost) {
  CTroubledFileOps disk;
  CPartialFile::Plan plan;
  plan.folder = sandbox.folder().string();
  plan.target = parseTargetPath("file");
  const auto file = std::make_shared<CPartialFile>(disk, plan);
  file->write(0, "sound", 5);
  file->checkpoint();
  file->write(5, "lost", 4);
  disk.failingSyncs = 1;
  EXPECT_THROW(file->checkpoint(), std::system_error);
  file->write(9, "beside it", 9);
  EXPECT_THAT(file->resume().written, ElementsAre(ByteSpan{0, 5}));

  // The same at the end: the next attempt must not find a file that only lacks its name.
  const auto last = std::make_shared<CPartialFile>(disk, plan);
  last->write(0, "lost", 4);
  EXPECT_EQ(last->verify(4), std::nullopt);
  disk.failingSyncs = 1;
  const auto progress = std::make_shared<AttemptProgress>();
  CFinalizer finalizer({.synced = [](const auto&) {}, .finalized = keepEnds()});
  progress->setResume(last->resume());
  finalizer.finalize({{1, last, progress}});
  ASSERT_EQ(ends.size(), 1U);
  EXPECT_EQ(ends[0].outcome.kind, Kind::kRetry);
  EXPECT_EQ(progress->resume().bytes(), 0U);
}

TEST_F(Finalization, KeepsNewFoldersOnceWhoeverMadeThem) {
  CFinalizer finalizer({.synced = [](const auto&) {}, .finalized = keepEnds()});
  const auto progress = std::make_shared<AttemptProgress>();
  finalizer.finalize({{1, arrived("before"), progress}});
  const auto slow = arrived("folder/slow");
  const int before = ops.fileSystemSyncs;
  finalizer.finalize({{2, arrived("folder/quick"), progress}});
  EXPECT_EQ(ops.fileSystemSyncs, before + 1);
  finalizer.finalize({{3, slow, progress}});
  EXPECT_EQ(ops.fileSystemSyncs, before + 1);
  newFile("third/file")->create(1);
  finalizer.finalize({{4, arrived("third/again"), progress}});
  EXPECT_EQ(ops.fileSystemSyncs, before + 2);
}

TEST_F(Finalization, SyncsEachFileAndFolderOfAFileSystemThatIsNotLocal) {
  ops.isLocal = false;
  CFinalizer finalizer({.synced = [](const auto&) {}, .finalized = keepEnds()});
  std::vector<CFinalizer::Arrival> arrivals;
  for (const char* name : {"new/deep/a", "new/b", "c", "d", "e"}) {
    arrivals.push_back({arrivals.size(), arrived(name), std::make_shared<AttemptProgress>()});
  }
  finalizer.finalize(std::move(arrivals));
  EXPECT_EQ(ops.fileSystemSyncs, 0);
  for (const char* name : {"new/deep/a", "new/b", "c", "d", "e", ".", "new", "new/deep"}) {
    EXPECT_TRUE(ops.synced.contains(inodeOf(name))) << name;
  }
}

TEST_F(Finalization, MakesNoSmallFileThatWasDiscardedMeanwhile) {
  CFinalizer finalizer({.synced = [](const auto&) {}, .finalized = keepEnds()});
  CWorkerPool pool("zt-disk-test");
  CChunkPool chunks;
  CSmallFiles small(pool, finalizer, chunks, keepEnds());
  const auto progress = std::make_shared<AttemptProgress>();
  const auto file = newFile("folder/file");
  small.add({.arrival = {1, file, progress}, .validator = {}, .content = {}}, TimePoint{});
  small.add({.arrival = {2, newFile("other"), progress}, .validator = {}, .content = {}},
            TimePoint{});
  file->discard();
  pool.start(1);
  EXPECT_EQ(small.tick(TimePoint::max()), std::nullopt);
  std::promise<void> through;
  pool.post([&through] { through.set_value(); });
  through.get_future().wait();
  pool.stop();
  EXPECT_THAT(names(), ElementsAre("other"));
  ASSERT_EQ(ends.size(), 1U);
  EXPECT_EQ(ends[0].attemptId, 2U);
}

TEST_F(Finalization, RecordsNoNameForTwoFilesOfOneBatch) {
  const std::vector<std::shared_ptr<AttemptProgress>> progress{std::make_shared<AttemptProgress>(),
                                                               std::make_shared<AttemptProgress>()};
  std::vector<std::string> recorded;
  const auto note = [&](const std::vector<AttemptId>& attempts) {
    for (const AttemptId attempt : attempts) {
      recorded.push_back(progress.at(attempt)->resume().download().finalName);
    }
  };
  CFinalizer finalizer({.synced = note, .finalized = keepEnds()});
  finalizer.finalize(
      {{0, arrived("file", "first"), progress[0]}, {1, arrived("file", "second"), progress[1]}});
  EXPECT_THAT(recorded, ElementsAre("file", "file (1)"));
  EXPECT_THAT(names(), ElementsAre("file", "file (1)"));
  EXPECT_EQ(ends.size(), 2U);
}

TEST_F(Finalization, RecordsAnotherNameWhenTheFirstOneIsTakenMeanwhile) {
  std::vector<std::string> recorded;
  const auto progress = std::make_shared<AttemptProgress>();
  const auto takeName = [&](const auto& /*attempts*/) {
    recorded.push_back(progress->resume().download().finalName);
    if (recorded.size() == 1) {
      sandbox.file("file", "of the user");
    }
  };
  CFinalizer finalizer({.synced = takeName, .finalized = keepEnds()});
  finalizer.finalize({{1, arrived("file"), progress}});
  ASSERT_EQ(ends.size(), 1U);
  EXPECT_EQ(ends[0].outcome.kind, Kind::kDone);
  EXPECT_THAT(recorded, ElementsAre("file", "file (1)"));
  EXPECT_THAT(names(), ElementsAre("file", "file (1)"));
}

TEST_F(Finalization, FindsAFileUnderItsRecordedNameAfterACrash) {
  auto file = arrived("file");
  file->noteSynced();
  const DownloadResume unnamed = file->resume();
  file->chooseName();
  const DownloadResume noted = file->resume();
  EXPECT_TRUE(file->publish());
  file.reset();
  copy("file");
  EXPECT_EQ(newFile("file")->reopen(noted), CPartialFile::Found::kFinalized);
  DownloadResume incomplete = noted;
  incomplete.durable = {{0, 2}};
  EXPECT_EQ(newFile("file")->reopen(incomplete), CPartialFile::Found::kNothing);
  EXPECT_EQ(newFile("file")->reopen(unnamed), CPartialFile::Found::kNothing);
  // Of the same length, and of somebody else.
  const auto checked = newFile("file", "", kMd5OfFile);
  EXPECT_EQ(checked->reopen(noted), CPartialFile::Found::kFinalized);
  sandbox.file("file", "FILE");
  EXPECT_EQ(newFile("file", "", kMd5OfFile)->reopen(noted), CPartialFile::Found::kNothing);
  sandbox.file("file", "longer");
  EXPECT_EQ(newFile("file")->reopen(noted), CPartialFile::Found::kNothing);
}

TEST_F(Finalization, RemovesTheOldNameWhereACrashHasLeftBoth) {
  auto file = arrived("file");
  file->noteSynced();
  file->chooseName();
  const DownloadResume noted = file->resume();
  file.reset();
  std::filesystem::create_hard_link(sandbox.folder() / noted.partialPath,
                                    sandbox.folder() / "file");
  EXPECT_EQ(newFile("file")->reopen(noted), CPartialFile::Found::kFinalized);
  EXPECT_THAT(names(), ElementsAre("file"));
}

TEST_F(Finalization, GoesOnWithAFileOfItsNameWhateverItsInodeUnlessItCannotBeTheOne) {
  auto file = newFile("file");
  file->restart("", 20);
  file->write(0, "synced", 6);
  file->checkpoint();
  const DownloadResume noted = file->resume();
  const std::string partial = noted.partialPath;
  file->write(6, "not synced", 10);
  file->park(CPartialFile::Unsynced::kLeave);
  copy(partial);
  EXPECT_EQ(file->reopen(noted), CPartialFile::Found::kPartial);
  EXPECT_EQ(file->resume(), noted);  // the rest may be lost
  file.reset();

  const std::filesystem::path path = sandbox.folder() / partial;
  std::filesystem::create_hard_link(path, sandbox.folder() / "second name");
  EXPECT_EQ(newFile("file")->reopen(noted), CPartialFile::Found::kNothing);
  std::filesystem::remove(sandbox.folder() / "second name");
  std::filesystem::resize_file(path, 5);
  EXPECT_EQ(newFile("file")->reopen(noted), CPartialFile::Found::kNothing);
  std::filesystem::resize_file(path, noted.size + 1);
  EXPECT_EQ(newFile("file")->reopen(noted), CPartialFile::Found::kNothing);
  std::filesystem::resize_file(path, noted.size);
  if (::geteuid() == 0) {
    ASSERT_EQ(::chown(path.c_str(), 12'345, static_cast<gid_t>(-1)), 0);
    EXPECT_EQ(newFile("file")->reopen(noted), CPartialFile::Found::kNothing);
    DownloadResume squashed = noted;
    squashed.owner = 12'345;  // as where the file system knows one owner only
    EXPECT_EQ(newFile("file")->reopen(squashed), CPartialFile::Found::kPartial);
  }
}

TEST_F(Finalization, GivesAFileOneNameAgainAndThatOfAnotherQueueAnother) {
  const auto pathOf = [&](const std::string& salt) {
    StartOrder order;
    order.folder = sandbox.folder().string();
    order.spec.location = order.spec.fileId = "file";
    order.salt = salt;
    CPartialFile file(ops, CPartialFile::planFor(order));
    file.create(1);
    return file.resume().partialPath;
  };
  EXPECT_EQ(pathOf("one"), pathOf("one"));
  EXPECT_NE(pathOf("one"), pathOf("two"));
}

// Else the lost file, with other bytes, could be taken for the new one when its disk is back.
TEST_F(Finalization, GivesTheSuccessorOfALostFileAnotherName) {
  const DownloadResume lost = arrived("file")->resume();
  std::filesystem::remove(sandbox.folder() / lost.partialPath);
  std::set<std::string> paths{lost.partialPath};
  for (int run = 0; run < 2; ++run) {  // the second one as after a kill before the first was noted
    auto file = newFile("file");
    EXPECT_EQ(file->reopen(lost), CPartialFile::Found::kNothing);
    EXPECT_EQ(file->resume().partialPath, lost.partialPath);
    file->write(0, "new", 3);
    paths.insert(file->resume().partialPath);
  }
  EXPECT_EQ(paths.size(), 2U);
}

TEST_F(Finalization, GoesOnWithNoFileThatTheAttemptBeforeIsJustRemoving) {
  auto before = newFile("file");
  before->create(1);
  const DownloadResume rest = before->resume();
  auto found = CPartialFile::Found::kPartial;
  auto again = newFile("file");
  std::thread waiting([&] { found = again->reopen(rest); });
  before.reset();  // before or after the other one has opened it
  waiting.join();
  EXPECT_EQ(found, CPartialFile::Found::kNothing);
}

TEST_F(Finalization, KeepsWhatIsThereWhileTheGroupsFolderIsGone) {
  auto file = arrived("file");
  const DownloadResume rest = file->resume();
  file.reset();
  const std::filesystem::path away = sandbox.folder().string() + ".away";
  std::filesystem::rename(sandbox.folder(), away);
  auto again = newFile("file");
  EXPECT_THROW(again->reopen(rest), CFolderGone);
  EXPECT_EQ(again->resume(), rest);
  std::filesystem::rename(away, sandbox.folder());
  EXPECT_EQ(newFile("file")->reopen(rest), CPartialFile::Found::kPartial);
}

TEST(DiskVerdict, LetsTheGroupWaitForTheDiskAndNotForWhatAServerClaims) {
  const auto judged = [](const std::exception& error) { return judgeDiskError(error); };
  const auto code = std::error_code(ENOSPC, std::generic_category());
  EXPECT_EQ(judged(std::system_error(code)).scope, AttemptOutcome::Scope::kFolder);
  EXPECT_EQ(judged(CFolderGone(ENOENT, std::generic_category())).scope,
            AttemptOutcome::Scope::kFolder);
  const AttemptOutcome claim = judged(CNoRoomForClaim(code, "no room"));
  EXPECT_EQ(claim.kind, Kind::kRetry);
  EXPECT_EQ(claim.scope, AttemptOutcome::Scope::kFile);
  EXPECT_EQ(judged(std::system_error(EACCES, std::generic_category())).kind, Kind::kFinal);
}

}  // namespace
}  // namespace zt_transfers::test
