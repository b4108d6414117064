#include "store/stored_queue.h"

#include <gmock/gmock.h>

#include <limits>

#include "full_disk.h"
#include "stored_queue_fixture.h"
#include "support/eventually.h"

namespace zt_transfers::test {
namespace {

using ::testing::HasSubstr;
using zantrio::test::eventually;

class StoredQueue : public CStoredQueueTest {
 protected:
  void SetUp() override { disk.setFull(false); }
  static DownloadResume partialFile(const std::string& path) {
    DownloadResume resume;
    resume.partialPath = path;
    return resume;
  }

  CFullDisk disk;
};

TEST_F(StoredQueue, KeepsGroupsAndFilesAsTheyWere) {
  {
    auto queue = opened();
    IQueueStore& store = queue->store();
    EXPECT_TRUE(found.groups.empty());
    store.saveGroup(group(3));
    for (const char* fileId : {"a", "b", "c", "d"}) {
      store.append(3, spec(fileId), {.size = 10, .sizeKnown = fileId[0] != 'd'});
    }
    FileSpec renewed = spec("c");
    renewed.url = "http://renewed/";
    store.replace({3, 2}, renewed);
    store.setState({3, 0}, {.phase = FilePhase::kCompleted, .size = 11});
    store.setState({3, 2}, {.phase = FilePhase::kFailed, .size = 12});
    store.remove({3, 1});
    StoredGroup changed = group(3);
    changed.paused = true;
    changed.marked = true;
    store.saveGroup(changed);
    EXPECT_TRUE(queue->close());
  }
  auto queue = opened();
  ASSERT_EQ(found.groups.size(), 1U);
  const auto& [kept, files, resumes, failures] = found.groups[0];
  EXPECT_TRUE(resumes.empty());
  EXPECT_EQ(kept.identity.id, 3);
  EXPECT_EQ(kept.identity.bucketId, "bucket3");
  EXPECT_EQ(kept.identity.bucketType, "message");
  EXPECT_EQ(kept.identity.token, "token");
  EXPECT_EQ(kept.identity.tokenExpires, 5U);
  EXPECT_EQ(kept.identity.folder, L"/home/\u00fc\u20ac");
  EXPECT_TRUE(kept.paused);
  EXPECT_TRUE(kept.marked);
  ASSERT_EQ(files.size(), 4U);
  EXPECT_EQ(files[0].phase, FilePhase::kCompleted);
  EXPECT_EQ(files[0].size, 11U);
  EXPECT_EQ(files[1].phase, FilePhase::kRemoved);
  EXPECT_EQ(files[2].phase, FilePhase::kFailed);
  EXPECT_EQ(files[3].phase, FilePhase::kWaiting);
  EXPECT_FALSE(files[3].sizeKnown);
  IQueueStore& store = queue->store();
  EXPECT_EQ(store.fileId({3, 2}), "c");
  EXPECT_EQ(store.find(3, "d"), 3U);
  EXPECT_FALSE(store.find(3, "b").has_value());
  const auto waiting = fetched(store, {3, 3});
  ASSERT_TRUE(waiting.has_value());
  EXPECT_EQ(waiting->fileId, "d");
  EXPECT_EQ(waiting->location, "place of d");
  EXPECT_EQ(waiting->headers, spec("d").headers);
  EXPECT_EQ(fetched(store, {3, 2})->url, "http://renewed/");
}

TEST_F(StoredQueue, KeepsWhatIsDurableOfDownloadsUntilTheyAreDone) {
  const DownloadResume begun{.partialPath = ".file.part",
                             .owner = 1000,
                             .validator = "\"etag\"",
                             .size = 100,
                             .written = {{0, 60}},
                             .durable = {{0, 20}, {30, 50}},
                             .finalName = "file"};
  DownloadResume earlier = begun;
  earlier.durable.clear();
  {
    auto queue = opened();
    IQueueStore& store = queue->store();
    store.saveGroup(group(1));
    for (const char* fileId : {"begun", "completed", "removed", "restarted"}) {
      store.append(1, spec(fileId), {.size = 100});
    }
    for (std::uint32_t index = 0; index < 4; ++index) {
      store.saveResume({1, index}, earlier);
      store.saveResume({1, index}, begun);
    }
    queue->flush(std::chrono::seconds(60));
    store.setState({1, 1}, {.phase = FilePhase::kCompleted, .size = 100});
    store.remove({1, 2});
    store.saveResume({1, 3}, {});
    EXPECT_TRUE(queue->close());
  }
  opened();
  ASSERT_EQ(found.groups.size(), 1U);
  const auto& resumes = found.groups[0].resumes;
  ASSERT_EQ(resumes.size(), 1U);
  EXPECT_EQ(resumes[0].first, 0U);
  DownloadResume expected = begun;
  expected.written = begun.durable;  // what was not synced may be gone
  EXPECT_EQ(resumes[0].second, expected);
}

TEST_F(StoredQueue, KeepsTheSessionsOfUploadsInParts) {
  const UploadSession session{.uploadId = "id/1",
                              .url = "http://host/file?signature=a",
                              .headers = {{"X-Token", "secret"}},
                              .partSize = 10,
                              .source = {.device = 1,
                                         .inode = 2,
                                         .size = 25,
                                         .modified = -3,
                                         .touched = std::numeric_limits<std::int64_t>::max()},
                              .completing = true,
                              .parts = {{3, "\"tag\"", ""}, {1, "\"a\"", "0cc1"}}};
  {
    auto queue = opened();
    IQueueStore& store = queue->store();
    store.saveGroup(group(1));
    store.append(1, spec("begun"), {.size = 25});
    store.saveResume({1, 0}, session);
    EXPECT_TRUE(queue->close());
  }
  opened();
  const auto& resumes = found.groups.at(0).resumes;
  ASSERT_EQ(resumes.size(), 1U);
  EXPECT_EQ(resumes[0].second, TransferResume(session));
  EXPECT_EQ(resumes[0].second.bytes(), 15U);
}

TEST_F(StoredQueue, KeepsWhatIsLeftBehindAlsoWithoutItsGroupUntilItIsGone) {
  UploadSession begun;
  begun.uploadId = "id";
  begun.partSize = 1;
  begun.source.size = 2;
  const Orphan session{.resume = begun, .since = 1234};
  const Orphan partial{.folder = "/target", .resume = partialFile(".part")};
  {
    auto queue = opened();
    IQueueStore& store = queue->store();
    store.saveGroup(group(1));
    for (const OrphanId id : {5, 6, 7}) {
      store.saveOrphan(id, id == 7 ? partial : session);
    }
    store.removeGroup(1);
    queue->flush(std::chrono::seconds(60));
    store.removeOrphan(6);
    EXPECT_TRUE(queue->close());
  }
  opened();
  const std::vector<std::pair<OrphanId, Orphan>> expected{{5, session}, {7, partial}};
  EXPECT_EQ(found.orphans, expected);
}

TEST_F(StoredQueue, KeepsWhyFilesFailedAsLongAsTheyHave) {
  {
    auto queue = opened();
    IQueueStore& store = queue->store();
    store.saveGroup(group(1));
    for (const char* fileId : {"failed", "twice", "waiting", "completed", "removed"}) {
      store.append(1, spec(fileId), {.size = 100});
    }
    for (std::uint32_t index = 0; index < 5; ++index) {
      store.setState({1, index}, {.phase = FilePhase::kFailed, .size = 100});
      store.saveFailure({1, index}, {"refused", "the server answered 403"});
    }
    store.setState({1, 1}, {.phase = FilePhase::kWaiting, .size = 100});
    store.setState({1, 1}, {.phase = FilePhase::kFailed, .size = 100});
    store.saveFailure({1, 1}, {"disk_full", "the disk is full"});
    store.setState({1, 2}, {.phase = FilePhase::kWaiting, .size = 100});
    store.setState({1, 3}, {.phase = FilePhase::kCompleted, .size = 100});
    store.remove({1, 4});
    EXPECT_TRUE(queue->close());
  }
  opened();
  ASSERT_EQ(found.groups.size(), 1U);
  const std::vector<std::pair<std::uint32_t, Failure>> expected{
      {0, {"refused", "the server answered 403"}}, {1, {"disk_full", "the disk is full"}}};
  EXPECT_EQ(found.groups[0].failures, expected);
}

TEST_F(StoredQueue, GivesTheRoomOfARemovedGroupBack) {
  auto queue = opened();
  IQueueStore& store = queue->store();
  store.saveGroup(group(1));
  for (int number = 0; number < 20'000; ++number) {
    store.append(1, spec(std::to_string(number)), {});
  }
  store.removeGroup(1);
  EXPECT_TRUE(queue->close());
  // What was left undone is done by the next one that opens it.
  CQueueDatabase database(path());
  while (database.sweep()) {
  }
  for (const char* left : {"SELECT count(*) FROM files", "SELECT count(*) FROM specs",
                           "SELECT count(*) FROM removed_groups", "PRAGMA freelist_count"}) {
    EXPECT_EQ(database.connection().number(left), 0) << left;
  }
}

TEST_F(StoredQueue, BringsEveryDescriptionOfALongQueue) {
  constexpr std::uint32_t kFiles = 20'000;
  {
    auto queue = opened();
    IQueueStore& store = queue->store();
    store.saveGroup(group(1));
    for (std::uint32_t number = 0; number < kFiles; ++number) {
      store.append(1, spec("file" + std::to_string(number)), {});
    }
    for (std::uint32_t number = 0; number < kFiles; number += 7) {
      ASSERT_EQ(fetched(store, {1, number})->location, "place of file" + std::to_string(number));
    }
    EXPECT_TRUE(queue->close());
  }
  auto queue = opened();
  for (std::uint32_t number = 0; number < kFiles; ++number) {
    ASSERT_EQ(fetched(queue->store(), {1, number})->location,
              "place of file" + std::to_string(number));
    queue->store().setState({1, number}, {.phase = FilePhase::kCompleted});
  }
  // Mostly they were there before they were asked for.
  EXPECT_LT(arrivalsSoFar(), 2000);
}

// What was queued meanwhile is kept as well, under ids of its own.
TEST_F(StoredQueue, AddsWhatIsStoredOnceTheOtherOwnerIsGone) {
  auto queue = opened();
  queue->store().saveGroup(group(1));
  queue->store().append(1, spec("x"), {});
  queue->flush(std::chrono::seconds(60));
  const auto second = opened();
  EXPECT_THAT(log.text(), HasSubstr("in use by another process"));
  EXPECT_TRUE(found.groups.empty());
  const std::int32_t id = found.lastGroupId + 1;
  EXPECT_GT(id, 1 << 30);
  EXPECT_GT(found.lastOrphanId, 1U << 30);
  second->store().saveGroup(group(id));
  second->store().append(id, spec("y"), {});
  EXPECT_FALSE(second->close());
  EXPECT_TRUE(queue->close());
  const RestoredQueue stored = late.get_future().get();
  ASSERT_EQ(stored.groups.size(), 1U);
  EXPECT_EQ(fetched(second->store(), {1, 0})->url, "http://host/x");
  EXPECT_EQ(second->store().spec({id, 0})->url, "http://host/y");
  EXPECT_TRUE(second->close());
  opened();
  ASSERT_EQ(found.groups.size(), 2U);
  EXPECT_EQ(found.groups[1].group.identity.id, id);
}

TEST_F(StoredQueue, WaitsForAnotherProgramThatReadsItAndThenTriesAgain) {
  auto before = opened();
  before->store().saveGroup(group(1));
  EXPECT_TRUE(before->close());
  auto reader = std::make_unique<CSqliteConnection>(path());
  reader->execute("BEGIN; SELECT * FROM groups");
  auto queue = opened();
  EXPECT_THAT(log.text(), HasSubstr("database is locked"));
  EXPECT_TRUE(found.groups.empty());
  reader.reset();
  EXPECT_EQ(late.get_future().get().groups.size(), 1U);
  EXPECT_TRUE(queue->close());

  reader = std::make_unique<CSqliteConnection>(path());
  reader->execute("BEGIN; SELECT * FROM groups");
  patience = std::chrono::seconds(60);
  queue = made();
  auto opening = std::async(std::launch::async, [&] { return queue->open(path()); });
  ASSERT_TRUE(eventually([&] { return !CDatabaseLock::take(path() + ".lock"); }));
  reader.reset();
  EXPECT_EQ(opening.get().groups.size(), 1U);
}

TEST_F(StoredQueue, GoesOnInMemoryWhileTheDiskIsFull) {
  auto queue = opened();
  IQueueStore& store = queue->store();
  store.saveGroup(group(1));
  store.append(1, spec("before"), {});
  queue->flush(std::chrono::seconds(60));
  disk.setFull(true);
  for (int number = 0; number < 3000; ++number) {
    store.append(1, spec("full" + std::to_string(number)), {});
  }
  // One that is completed, and then another one in its place.
  const FileRef again{1, 7};
  FileSpec renewed = spec("full6");
  renewed.url = "http://renewed/";
  store.saveFailure(again, {"refused", "before"});
  store.saveResume(again, partialFile(".before"));
  store.setState(again, {.phase = FilePhase::kCompleted});
  store.replace(again, renewed);
  store.setState(again, {});
  store.saveResume(again, partialFile(".again"));
  store.setState(again, {.phase = FilePhase::kFailed});
  store.saveFailure(again, {"refused", "again"});
  EXPECT_FALSE(queue->close());
  EXPECT_THAT(log.text(), HasSubstr("cannot be written to"));
  EXPECT_THAT(log.text(), HasSubstr("disk is full"));
  for (std::uint32_t number = 10; number < 3000; ++number) {
    ASSERT_EQ(store.spec({1, number + 1})->url, "http://host/full" + std::to_string(number));
  }
  disk.setFull(false);
  EXPECT_TRUE(queue->close());
  EXPECT_THAT(log.text(), HasSubstr("can be written to again"));
  const auto reopened = opened();
  ASSERT_EQ(found.groups.size(), 1U);
  const auto& [kept, files, resumes, failures] = found.groups[0];
  EXPECT_EQ(files.size(), 3001U);
  ASSERT_EQ(resumes.size(), 1U);
  EXPECT_EQ(resumes[0].second.download().partialPath, ".again");
  ASSERT_EQ(failures.size(), 1U);
  EXPECT_EQ(failures[0].second.reason, "again");
  EXPECT_EQ(fetched(reopened->store(), again)->url, "http://renewed/");
}

TEST_F(StoredQueue, TriesLessAndLessOftenWhileTheDiskIsFull) {
  auto queue = opened();
  queue->store().saveGroup(group(1));
  queue->flush(std::chrono::seconds(60));
  disk.setFull(true);
  const auto begin = std::chrono::steady_clock::now();
  while (std::chrono::steady_clock::now() - begin < std::chrono::milliseconds(400)) {
    queue->store().saveGroup(group(1));  // each of them could make it try
    queue->flush(std::chrono::seconds(60));
  }
  // Every 8 ms at the most, once it has failed a few times.
  EXPECT_LT(disk.refusals(), 200);
  EXPECT_GT(disk.refusals(), 3);
  disk.setFull(false);
}

TEST_F(StoredQueue, MakesItsDatabaseOnceThereIsRoom) {
  disk.setFull(true);
  auto queue = opened();
  queue->store().saveGroup(group(1));
  queue->store().append(1, spec("x"), {});
  EXPECT_FALSE(queue->close());
  EXPECT_THAT(log.text(), HasSubstr("cannot be opened"));
  disk.setFull(false);
  EXPECT_TRUE(queue->close());
  opened();
  ASSERT_EQ(found.groups.size(), 1U);
}

TEST_F(StoredQueue, GoesOnInMemoryWithoutAFolder) {
  auto queue = made();
  queue->open((sandbox.folder() / "missing" / "queue.db").string());
  EXPECT_THAT(log.text(), HasSubstr("cannot be used"));
}

TEST_F(StoredQueue, LetsNobodyElseReadItsFiles) {
  auto queue = opened();
  queue->store().saveGroup(group(1));
  queue->flush(std::chrono::seconds(60));
  for (const auto& entry : std::filesystem::directory_iterator(sandbox.folder())) {
    EXPECT_EQ(entry.status().permissions() & std::filesystem::perms(077),
              std::filesystem::perms::none)
        << entry.path();
  }
}

}  // namespace
}  // namespace zt_transfers::test
