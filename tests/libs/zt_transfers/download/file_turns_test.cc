#include "download/file_turns.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>

#include <filesystem>
#include <future>
#include <mutex>
#include <vector>

#include "base/worker_pool.h"
#include "download/download_runner.h"
#include "fault_server.h"
#include "http/http_loop.h"
#include "sandbox.h"
#include "support/eventually.h"
#include "troubled_disk.h"

namespace zt_transfers::test {
namespace {

using ::testing::ElementsAre;
using zantrio::test::eventually;

class CNoLog : public ILog {
 public:
  void write(Priority, std::string_view) noexcept override {}
};

class CEnds final : public IAttemptObserver {
 public:
  void onAttemptsDone(const std::vector<AttemptEnd>& ends) override {
    const std::lock_guard lock(mutex_);
    ends_.insert(ends_.end(), ends.begin(), ends.end());
  }
  bool onAttemptCheckpoint(AttemptId) override { return true; }
  bool onAttemptFinalizing(AttemptId) override { return true; }
  void keepDurably(const std::vector<AttemptId>&) override {}
  void onOrphaned(Orphan) override {}
  void onCleanedUp(OrphanId, const AttemptOutcome&) override {}

  // Waits for the end of the attempt.
  AttemptOutcome of(AttemptId attemptId) {
    AttemptOutcome outcome;
    EXPECT_TRUE(eventually([&] {
      const std::lock_guard lock(mutex_);
      for (const AttemptEnd& end : ends_) {
        if (end.attemptId == attemptId) {
          outcome = end.outcome;
          return true;
        }
      }
      return false;
    }));
    return outcome;
  }

 private:
  std::mutex mutex_;
  std::vector<AttemptEnd> ends_;  // guarded by mutex_
};

// Attempts at one file of 2.5 MB, one after the other, with a single thread for the disk.
class FileTurns : public ::testing::Test {
 protected:
  void SetUp() override {
    server.put("/file", content);
    pool.start(1);
    loop.start([this] { return runner.tick(); }, [this] { runner.stopAll(); });
  }
  void TearDown() override {
    server.release();
    loop.stop();
    pool.stop();
  }

  StartOrder order(AttemptId attemptId, const TransferResume& resume = {}) {
    StartOrder order;
    order.attemptId = attemptId;
    order.file = {1, 0};
    order.spec.fileId = order.spec.location = "file";
    order.spec.url = server.url("/file");
    order.spec.size = content.size();
    order.spec.contentMd5 = md5Of(content);
    order.folder = sandbox.folder().string();
    order.resume = resume;
    order.progress = std::make_shared<AttemptProgress>();
    order.progress->setResume(resume);
    return order;
  }
  std::shared_ptr<AttemptProgress> begin(StartOrder order) {
    auto progress = order.progress;
    loop.post([this, order]() mutable { runner.start(std::move(order)); });
    return progress;
  }
  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(sandbox.folder())) {
      names.push_back(entry.path().filename());
    }
    return names;
  }
  std::string lastRange() {
    const auto headers = server.requests().back().headers;
    return headers.contains("range") ? headers.at("range") : "";
  }

  const std::string content = patternOf(2'500'000);
  CSandbox sandbox;
  CFaultServer server;
  CSystemClock clock;
  CNoLog log;
  CEnds ends;
  CTroubledFileOps disk;
  CWorkerPool pool{"zt-disk-test"};
  CHttpLoop loop{"zt-net-test", clock};
  CDownloadRunner runner{{loop, pool, log, ends, disk}};
};

TEST_F(FileTurns, LetTheNextAttemptWaitForASlowDiskAndTakeTheOpenFileOver) {
  server.plan("/file", {fault::slow(4'000'000)});
  const auto progress = begin(order(1));
  ASSERT_TRUE(eventually([&] { return progress->resume().bytes() > 500'000; }));
  {
    std::unique_lock hangs(disk.busy);
    ASSERT_TRUE(eventually([&] { return disk.waiting > 0; }));
    loop.post([&] { runner.stop({.attemptId = 1, .progress = progress}); });
    begin(order(2, progress->resume()));
    std::promise<void> begun;
    loop.post([&] { begun.set_value(); });
    begun.get_future().wait();
    EXPECT_EQ(server.requests().size(), 1U);
  }
  EXPECT_EQ(ends.of(2).kind, AttemptOutcome::Kind::kDone);
  EXPECT_EQ(contentOf(sandbox.folder() / "file"), content);
  EXPECT_THAT(names(), ElementsAre("file"));
  EXPECT_NE(lastRange(), "");
  EXPECT_EQ(disk.opened, 0);
  EXPECT_EQ(disk.bytesRead, 0U);
}

TEST_F(FileTurns, KeepTheProgressOfAFileThatAnotherProgramHasLocked) {
  server.plan("/file", {fault::of(Fault::Kind::kCloseAfter, 1'000'000)});
  const auto progress = begin(order(1));
  ASSERT_EQ(ends.of(1).kind, AttemptOutcome::Kind::kRetry);
  const TransferResume left = progress->resume();
  CDownloadRunner other({loop, pool, log, ends, disk});  // knows nothing of the first attempt
  const auto start = [&](StartOrder next) {
    loop.post([&other, next]() mutable { other.start(std::move(next)); });
  };
  StartOrder refused = order(2, left);
  start(refused);
  const AttemptOutcome outcome = ends.of(2);
  EXPECT_EQ(outcome.kind, AttemptOutcome::Kind::kRetry);
  EXPECT_EQ(outcome.retryBudget, AttemptOutcome::RetryBudget::kFree);
  EXPECT_EQ(refused.progress->resume(), left);
  begin(order(3, left));
  EXPECT_EQ(ends.of(3).kind, AttemptOutcome::Kind::kDone);
  EXPECT_NE(lastRange(), "");
  EXPECT_THAT(names(), ElementsAre("file"));
  std::promise<void> stopped;
  loop.post([&] {
    other.stopAll();
    stopped.set_value();
  });
  stopped.get_future().wait();
}

TEST_F(FileTurns, FetchBytesAgainThatAFailedSyncHasLost) {
  disk.failingSyncs = 1;
  const auto progress = begin(order(1));
  EXPECT_EQ(ends.of(1).kind, AttemptOutcome::Kind::kRetry);
  begin(order(2, progress->resume()));
  EXPECT_EQ(ends.of(2).kind, AttemptOutcome::Kind::kDone);
  EXPECT_EQ(contentOf(sandbox.folder() / "file"), content);
  EXPECT_THAT(names(), ElementsAre("file"));
}

class CHandClock final : public IClock {
 public:
  TimePoint now() const override { return time; }
  std::int64_t secondsSince1970() const override { return 0; }

  TimePoint time{std::chrono::hours(1)};
};

class CAtOnce final : public IExecutor {
 public:
  void post(std::function<void()> task) override { task(); }
};

TEST(FileTurnsInTime, CloseAFileThatNobodyTakesOverAndKeepItsDigest) {
  CSandbox sandbox;
  CHandClock clock;
  CAtOnce atOnce;
  CTroubledFileOps disk;
  CFileTurns turns({.loop = atOnce, .pool = atOnce, .clock = clock, .begin = [](StartOrder) {}});
  StartOrder order;
  order.attemptId = 1;
  order.folder = sandbox.folder().string();
  order.spec.location = "file";
  order.spec.contentMd5 = "any";
  ASSERT_TRUE(turns.enter(order));
  auto file = std::make_shared<CPartialFile>(disk, CPartialFile::planFor(order));
  file->restart("", DownloadResume::kUnknown);
  file->write(0, "bytes", 5);
  file->hash("bytes", 5);
  turns.end(order.file, 1, file, false);
  EXPECT_EQ(turns.tick(), clock.time + CFileTurns::kOpenFor);
  EXPECT_TRUE(file->open());
  clock.time += CFileTurns::kOpenFor;
  EXPECT_EQ(turns.tick(), std::nullopt);
  EXPECT_FALSE(file->open());

  order.attemptId = 2;
  order.resume = file->resume();
  ASSERT_TRUE(turns.enter(order));
  ASSERT_EQ(turns.takeKept(order.file), file);
  ASSERT_TRUE(file->renew(order));
  EXPECT_EQ(file->reopen(order.resume.download()), CPartialFile::Found::kPartial);
  EXPECT_EQ(file->hashed(), 5U);
  turns.end(order.file, 2, file, true);  // the disk may be another one when it is back
  EXPECT_FALSE(file->open());
  EXPECT_EQ(turns.takeOrphan({.folder = order.folder, .resume = order.resume}), file);
  file->discard();
}

}  // namespace
}  // namespace zt_transfers::test
