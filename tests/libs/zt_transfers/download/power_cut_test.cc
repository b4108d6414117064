#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "base/file_status.h"
#include "base/worker_pool.h"
#include "download/download_runner.h"
#include "fault_server.h"
#include "http/http_loop.h"
#include "recorded_disk.h"
#include "sandbox.h"
#include "support/eventually.h"

namespace zt_transfers::test {
namespace {

using zantrio::test::eventually;
using Survives = CDiskModel::Survives;

constexpr std::size_t kHeldAt = 1024 * 1024;  // bytes that the first run gets of a large file
constexpr std::size_t kRange = 512 * 1024;

class CNoLog : public ILog {
 public:
  void write(Priority, std::string_view) noexcept override {}
};

// Takes the engine's place: keeps the resume records and learns which files are done. Each of these
// is noted among the recorded changes.
class CBookkeeper final : public IAttemptObserver {
 public:
  struct Note {
    enum class Kind {
      kRecord,         // may be on the disk from now on
      kDurableRecord,  // is on the disk, and no earlier one any more
      kDone,
    };
    Kind kind = Kind::kRecord;
    std::string fileId;
    DownloadResume record{};
  };

  explicit CBookkeeper(CRecordingFileOps& ops) : ops_(ops) {}

  StartOrder begin(StartOrder order) {
    const std::lock_guard lock(mutex_);
    order.attemptId = attempts_.size();
    order.file = {1, static_cast<std::uint32_t>(std::hash<std::string>()(order.spec.fileId))};
    order.progress = std::make_shared<AttemptProgress>();
    order.progress->setResume(order.resume);
    attempts_.push_back({order.spec.fileId, order.progress});
    return order;
  }
  DownloadResume recordOf(const std::string& fileId) const {
    const std::lock_guard lock(mutex_);
    const auto attempt =
        std::find_if(attempts_.rbegin(), attempts_.rend(),
                     [&](const auto& candidate) { return candidate.fileId == fileId; });
    return attempt->progress->resume().download();
  }
  std::uint64_t bytesOf(std::size_t attempt) const {
    const std::lock_guard lock(mutex_);
    return attempts_.at(attempt).progress->bytes;
  }
  std::size_t ended() const { return ended_; }
  std::vector<Note> notes() const {
    const std::lock_guard lock(mutex_);
    return notes_;
  }
  void keepAll() {
    for (AttemptId attempt = 0; attempt != attempts_.size(); ++attempt) {
      keepDurably({attempt});
    }
  }

  void onAttemptsDone(const std::vector<AttemptEnd>& ends) override {
    for (const AttemptEnd& end : ends) {
      EXPECT_EQ(end.outcome.kind, AttemptOutcome::Kind::kDone) << end.outcome.reason;
      note(end.attemptId, Note::Kind::kDone);
    }
    ended_ += ends.size();
  }
  bool onAttemptCheckpoint(AttemptId attemptId) override {
    note(attemptId, Note::Kind::kRecord);
    return true;
  }
  bool onAttemptFinalizing(AttemptId /*attemptId*/) override { return true; }
  void keepDurably(const std::vector<AttemptId>& attempts) override {
    for (const AttemptId attempt : attempts) {
      note(attempt, Note::Kind::kDurableRecord);
    }
  }
  void onOrphaned(Orphan /*orphan*/) override {}
  void onCleanedUp(OrphanId /*id*/, const AttemptOutcome& /*outcome*/) override {}

 private:
  struct Attempt {
    std::string fileId;
    std::shared_ptr<AttemptProgress> progress;
  };

  void note(AttemptId attemptId, Note::Kind kind) {
    const std::lock_guard lock(mutex_);
    const Attempt& attempt = attempts_.at(attemptId);
    notes_.push_back({kind, attempt.fileId, attempt.progress->resume().download()});
    ops_.note(notes_.size() - 1);
  }

  CRecordingFileOps& ops_;
  std::atomic<std::size_t> ended_{0};
  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::vector<Attempt> attempts_;
  std::vector<Note> notes_;
};

// Parameter: whether the file system cannot rename without replacing.
class PowerCut : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    server.watchBody([this](const std::string& path, std::uint64_t bytes) {
      if (heldPaths.contains(path) && bytes >= kHeldAt) {
        released.wait();
      }
    });
    const CUniqueFd folder(::open(sandbox.folder().c_str(), O_RDONLY | O_CLOEXEC));
    root = statusOf(folder.get()).st_ino;
    const CUniqueFd file = ops.create(folder.get(), "taken.txt");
    ops.write(file.get(), kMine.data(), kMine.size(), 0);
    ops.sync(file.get());
    ops.sync(folder.get());
    before = ops.changes().size();
    expected["taken.txt"] = {kMine};
  }

  void offer(const std::string& path, const std::string& content, const std::string& finalName) {
    server.put("/" + path, content);
    versions["\"" + md5Of(content) + "\""] = content;
    expected[finalName].insert(content);
    newest[path] = {finalName, content};
  }
  StartOrder orderFor(const std::string& path, bool verified) {
    StartOrder order;
    order.spec.fileId = path;
    order.spec.location = path;
    order.spec.url = server.url("/" + path);
    order.spec.size = newest.at(path).content.size();
    order.spec.contentMd5 = verified ? md5Of(newest.at(path).content) : "";
    order.folder = sandbox.folder().string();
    order.maxConcurrent = 8;
    return bookkeeper.begin(std::move(order));
  }
  StartOrder resumed(const std::string& path, bool verified) {
    DownloadResume record = bookkeeper.recordOf(path);
    record.written = record.durable;  // as after the end of the process
    StartOrder order = orderFor(path, verified);
    order.resume = record;
    order.parts = {.from = 2 * kRange, .size = kRange};
    order.progress->setResume(record);
    return order;
  }

  // One run of the client, until `reached`.
  template <typename Condition>
  void run(std::vector<StartOrder> orders, Condition reached) {
    CSystemClock clock;
    CNoLog log;
    CHttpLoop loop("zt-net-test", clock);
    CWorkerPool pool("zt-disk-test");
    CDownloadRunner runner({loop, pool, log, bookkeeper, ops});
    pool.start(4);
    loop.start([&] { return runner.tick(); }, [&] { runner.stopAll(); });
    loop.post([&] {
      for (StartOrder& order : orders) {
        runner.start(std::move(order));
      }
    });
    EXPECT_TRUE(eventually(reached));
    loop.stop();
    pool.stop();
    runner.syncToDisk();
  }

  void download() {
    offer("large", patternOf(3 * kHeldAt, 1), "large");
    offer("changed", patternOf(2 * kHeldAt, 2), "changed");
    heldPaths = {"/large", "/changed"};
    std::vector<StartOrder> orders{orderFor("large", true), orderFor("changed", false)};
    const std::vector<std::string> small{"a", "b", "c", "folder/d", "folder/deep/e", "taken.txt"};
    for (const std::string& path : small) {
      offer(path, patternOf(1000 + 7000 * orders.size(), static_cast<unsigned>(orders.size())),
            path == "taken.txt" ? "taken (1).txt" : path);
      orders.push_back(orderFor(path, orders.size() % 2 == 0));
    }
    // One request for each file, whose body the server holds.
    run(std::move(orders), [&] {
      return bookkeeper.ended() == small.size() && bookkeeper.bytesOf(0) >= kHeldAt &&
             bookkeeper.bytesOf(1) >= kHeldAt;
    });
    bookkeeper.keepAll();  // the engine does that when the client ends
    release.set_value();
    offer("changed", patternOf(kHeldAt / 2, 3), "changed");
    offer("later/file", patternOf(5000, 4), "later/file");
    std::vector<StartOrder> rest{resumed("large", true), resumed("changed", false),
                                 orderFor("later/file", false)};
    run(std::move(rest), [&] { return bookkeeper.ended() == small.size() + 3; });
  }

  // Besides what was synced, these outlive each power cut.
  void checkPowerCuts(Survives names, Survives contents) {
    const auto changes = ops.changes();
    const auto notes = bookkeeper.notes();
    CDiskModel disk(root, names, contents);
    namesSurvive = names == Survives::kAll;
    done.clear();
    records.clear();
    for (std::size_t count = 0; count != changes.size() && !HasFailure(); ++count) {
      SCOPED_TRACE("after change " + std::to_string(count) + ": " + describe(changes[count]));
      disk.apply(changes[count]);
      if (changes[count].kind == DiskChange::Kind::kNote) {
        take(notes.at(changes[count].note));
      }
      if (count >= before) {
        check(disk.files());
      }
    }
    EXPECT_EQ(done.size(), newest.size());
    EXPECT_GT(changes.size() - before, 60U);
  }
  void take(const CBookkeeper::Note& note) {
    using Kind = CBookkeeper::Note::Kind;
    if (note.kind == Kind::kDone) {
      done.insert(note.fileId);
      return;
    }
    std::vector<DownloadResume>& possible = records[note.fileId];
    if (note.kind == Kind::kDurableRecord) {
      possible.clear();
    }
    possible.push_back(note.record);
  }
  void check(const std::map<std::string, CDiskModel::File>& files) {
    for (const auto& [path, file] : files) {
      const bool isPartial = path[path.rfind('/') + 1] == '.';
      EXPECT_TRUE(isPartial || expected[path].contains(*file.content)) << path;
    }
    EXPECT_TRUE(files.contains("taken.txt"));
    for (const std::string& path : done) {
      const auto file = files.find(newest.at(path).finalName);
      EXPECT_TRUE(file != files.end() && *file->second.content == newest.at(path).content)
          << path << " is lost, though it was reported to be complete";
    }
    for (const auto& [path, possible] : records) {
      for (const DownloadResume& record : possible) {
        check(files, path, record);
      }
    }
  }
  void check(const std::map<std::string, CDiskModel::File>& files, const std::string& path,
             const DownloadResume& record) const {
    if (const auto partial = files.find(record.partialPath); partial != files.end()) {
      EXPECT_TRUE(holds(*partial->second.content, record)) << path;
    } else if (namesSurvive && !record.finalName.empty()) {
      const std::string folder = path.substr(0, path.rfind('/') + 1);
      const auto file = files.find(folder + record.finalName);
      EXPECT_TRUE(file != files.end() && *file->second.content == versions.at(record.validator))
          << path << " has neither name, and would be fetched again";
    }
  }
  // Whether the bytes that the record claims are there, and of the version that it names.
  bool holds(const std::string& content, const DownloadResume& record) const {
    return std::all_of(record.durable.begin(), record.durable.end(), [&](const ByteSpan& range) {
      return content.size() >= range.end &&
             content.compare(range.begin, range.length(), versions.at(record.validator),
                             range.begin, range.length()) == 0;
    });
  }

  struct Newest {
    std::string finalName;
    std::string content;
  };

  const std::string kMine = "a file that was there before";
  CSandbox sandbox;
  std::set<std::string> heldPaths;
  std::promise<void> release;
  std::shared_future<void> released = release.get_future().share();
  CFaultServer server;
  CRecordingFileOps ops{GetParam()};
  CBookkeeper bookkeeper{ops};
  ino_t root = 0;
  std::size_t before = 0;  // changes that the test made itself

  std::map<std::string, std::set<std::string>> expected;  // contents by final name
  std::map<std::string, std::string> versions;            // contents by validator
  std::map<std::string, Newest> newest;
  bool namesSurvive = false;
  std::set<std::string> done;
  std::map<std::string, std::vector<DownloadResume>> records;  // those that may be on the disk
};

TEST_P(PowerCut, LeavesTheOldOrTheNewFileAndNoRecordOfBytesThatAreLost) {
  download();
  for (const Survives names : {Survives::kSynced, Survives::kAll}) {
    for (const Survives contents : {Survives::kSynced, Survives::kAll}) {
      SCOPED_TRACE("names " + std::to_string(static_cast<int>(names)) + ", contents " +
                   std::to_string(static_cast<int>(contents)));
      checkPowerCuts(names, contents);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(ByRenamingAndByLinking, PowerCut, ::testing::Bool());

}  // namespace
}  // namespace zt_transfers::test
