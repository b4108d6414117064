#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

#include "recording_disk.h"
#include "store/migrations.h"
#include "stored_queue_fixture.h"

namespace zt_transfers::test {
namespace {

namespace fs = std::filesystem;

enum class Start { kWithoutAFile, kWithTheFirstSchema };

// A queue is changed step by step while all disk operations are recorded. Then each prefix of them
// is repeated in a folder, as if the power had failed after it.
class QueuePowerCut : public CStoredQueueTest, public ::testing::WithParamInterface<Start> {
 protected:
  using Step = std::function<void(IQueueStore&)>;

  static std::vector<Step> steps();
  static DownloadResume partialFile(const std::string& path, const ByteSpans& durable) {
    DownloadResume resume;
    resume.partialPath = path;
    resume.size = 10;
    resume.durable = durable;
    return resume;
  }

  fs::path folder() const { return memory.folder(); }
  std::string database() const { return (folder() / "queue.db").string(); }

  std::unique_ptr<CStoredQueue> made() {
    const std::chrono::hours never{1};  // only flushes write
    return std::make_unique<CStoredQueue>(
        "zt-store-test", log,
        CStoredQueue::Listener{.arrived =
                                   [this](std::int32_t) {
                                     {
                                       const std::lock_guard lock(mutex);
                                       ++arrivals;
                                     }
                                     arrived.notify_all();
                                   },
                               .found = [](const auto&) {}},
        CQueueWriter::Timing{.gather = never});
  }
  void lay(const CReplayedDisk::Files& files) {
    for (const auto& entry : fs::directory_iterator(folder())) {
      fs::remove(entry.path());
    }
    for (const auto& [name, content] : files) {
      std::ofstream(folder() / name, std::ios::binary) << content;
    }
  }
  CReplayedDisk::Files begin() {
    lay({});
    if (GetParam() == Start::kWithTheFirstSchema) {
      CSqliteConnection connection(database());
      EXPECT_TRUE(migrate(connection, {queueMigrations().front()}));
      connection.execute("INSERT INTO groups VALUES(1, 'b', 't', 'k', 0, '', 0, 1)");
      connection.execute("INSERT INTO files VALUES(4294967296, 1, 7, 'old')");
    }
    CReplayedDisk::Files files;
    for (const auto& entry : fs::directory_iterator(folder())) {
      files[entry.path().filename().string()] = contentOf(entry.path());
    }
    return files;
  }
  // Takes the first `count` steps; `taken` is called when the queue is open, and after each step.
  void run(std::size_t count, const std::function<void()>& taken) {
    const auto queue = made();
    queue->open(database());
    ASSERT_EQ(log.text(), "");
    taken();
    const auto all = steps();
    for (std::size_t step = 0; step < count; ++step) {
      all[step](queue->store());
      queue->flush(std::chrono::seconds(60));
      taken();
    }
    ASSERT_TRUE(queue->close());
  }
  // The queue in the folder, as text.
  std::string state();

  const CSandbox memory{"/dev/shm"};
};

std::vector<QueuePowerCut::Step> QueuePowerCut::steps() {
  const auto kept = [](FilePhase phase) { return StoredState{.phase = phase, .size = 10}; };
  return {
      [](IQueueStore& store) { store.saveGroup(group(2)); },
      [](IQueueStore& store) {
        for (const char* fileId : {"a", "b", "c"}) {
          store.append(2, spec(fileId), {.size = 10});
        }
      },
      [](IQueueStore& store) {
        store.saveResume({2, 0}, partialFile(".part", {{0, 5}}));
      },
      [kept](IQueueStore& store) {
        store.saveFailure({2, 1}, {"refused", "the server answered 403"});
        store.setState({2, 1}, kept(FilePhase::kFailed));
      },
      [kept](IQueueStore& store) {
        store.setState({2, 0}, kept(FilePhase::kCompleted));
      },
      [](IQueueStore& store) {
        store.saveOrphan(1, {.folder = "/f", .resume = partialFile(".orphan", {})});
      },
      [](IQueueStore& store) {
        FileSpec renewed = spec("c");
        renewed.url = "http://renewed/";
        store.replace({2, 2}, renewed);
      },
      [](IQueueStore& store) {
        store.remove({2, 2});
      },
      [](IQueueStore& store) {
        store.saveGroup(group(3));
        for (int number = 0; number < 200; ++number) {
          store.append(3, spec(std::to_string(number)), {});
        }
      },
      [](IQueueStore& store) { store.removeOrphan(1); },
      [](IQueueStore& store) { store.removeGroup(3); },
      [](IQueueStore& store) {
        StoredGroup paused = group(2);
        paused.paused = true;
        store.saveGroup(paused);
      },
  };
}

std::string QueuePowerCut::state() {
  const auto queue = made();
  const auto restored = queue->open(database());
  if (!log.text().empty()) {
    return "cannot be opened: " + log.text();
  }
  std::ostringstream text;
  text << "last " << restored.lastGroupId;
  for (const auto& [group, files, resumes, failures] : restored.groups) {
    const std::int32_t id = group.identity.id;
    text << "\ngroup " << id << group.identity.bucketId << group.paused << group.marked;
    for (std::uint32_t index = 0; index < files.size(); ++index) {
      const StoredState& file = files[index];
      text << "\n " << index << " " << int(file.phase) << " " << file.size;
      if (file.phase == FilePhase::kWaiting) {
        const auto spec = fetched(queue->store(), {id, index});
        text << (spec ? spec->fileId + spec->url : " lost its description");
      }
    }
    for (const auto& [index, resume] : resumes) {
      text << "\n resume " << index << resume.download().partialPath << resume.bytes();
    }
    for (const auto& [index, failure] : failures) {
      text << "\n failure " << index << failure.code << failure.reason;
    }
  }
  for (const auto& [id, orphan] : restored.orphans) {
    text << "\norphan " << id << orphan.folder << orphan.resume.download().partialPath;
  }
  return text.str();
}

TEST_P(QueuePowerCut, LeavesTheStateBeforeOrAfterAChangeAndNoneBeforeAConfirmedOne) {
  const std::size_t count = steps().size();
  std::vector<std::string> states;  // after each step, without a power cut
  for (std::size_t step = 0; step <= count; ++step) {
    begin();
    ASSERT_NO_FATAL_FAILURE(run(step, [] {}));
    states.push_back(state());
    ASSERT_EQ(std::count(states.begin(), states.end(), states.back()), 1) << states.back();
  }

  CReplayedDisk disk(begin());
  std::vector<std::size_t> confirmed;  // operations before the confirmation of each state
  std::vector<DiskOperation> operations;
  {
    const CRecordingDisk recorder;
    ASSERT_NO_FATAL_FAILURE(
        run(count, [&] { confirmed.push_back(CRecordingDisk::operations().size()); }));
    operations = CRecordingDisk::operations();
  }
  ASSERT_GT(operations.size(), 3 * count);  // it has recorded

  std::map<CReplayedDisk::Files, std::string> known;
  const auto check = [&](const CReplayedDisk::Files& files, std::size_t done, const char* cut) {
    std::string& seen = known[files];
    if (seen.empty()) {
      lay(files);
      seen = state();
    }
    const auto after = std::upper_bound(confirmed.begin(), confirmed.end(), done);
    const std::size_t last =
        after == confirmed.begin() ? 0 : static_cast<std::size_t>(after - confirmed.begin()) - 1;
    EXPECT_TRUE(seen == states[last] || (last < count && seen == states[last + 1]))
        << cut << " after operation " << done << " of " << operations.size() << ", step " << last
        << " was confirmed; found:\n"
        << seen << "\ninstead of:\n"
        << states[last];
  };
  for (std::size_t done = 0; done < operations.size() && !HasFailure(); ++done) {
    check(disk.durable(), done, "without unsynced bytes");
    check(disk.written(), done, "with unsynced bytes");
    DiskOperation torn = operations[done];
    torn.bytes.resize(torn.bytes.size() / 2);
    CReplayedDisk tornDisk = disk;
    if (torn.kind == DiskOperation::Kind::kWrite) {
      tornDisk.apply(torn);
      check(tornDisk.written(), done, "in the middle of a write");
    }
    disk.apply(operations[done]);
  }
  check(disk.durable(), operations.size(), "at the end, without unsynced bytes");
}

INSTANTIATE_TEST_SUITE_P(From, QueuePowerCut,
                         ::testing::Values(Start::kWithoutAFile, Start::kWithTheFirstSchema),
                         [](const auto& start) {
                           return start.param == Start::kWithoutAFile ? "WithoutAFile"
                                                                      : "WithTheFirstSchema";
                         });

}  // namespace
}  // namespace zt_transfers::test
