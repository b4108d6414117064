#include "download/download_runner.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <future>
#include <utility>

#include "base/unique_fd.h"
#include "base/worker_pool.h"
#include "http/http_loop.h"
#include "sandbox.h"

namespace zt_transfers::test {
namespace {

class CNoLog : public ILog {
 public:
  void write(Priority, std::string_view) noexcept override {}
};

class CObserver final : public IAttemptObserver {
 public:
  void onAttemptsDone(const std::vector<AttemptEnd>&) override {}
  bool onAttemptCheckpoint(AttemptId) override { return true; }
  bool onAttemptFinalizing(AttemptId) override { return true; }
  void keepDurably(const std::vector<AttemptId>&) override {}
  void onOrphaned(Orphan orphan) override { left.push_back(std::move(orphan)); }
  void onCleanedUp(OrphanId, const AttemptOutcome& outcome) override {
    discarded.set_value(outcome.kind);
  }

  std::vector<Orphan> left;
  std::promise<AttemptOutcome::Kind> discarded;
};

class DownloadRunner : public ::testing::Test {
 protected:
  void SetUp() override { pool.start(1); }
  void TearDown() override { pool.stop(); }
  // As it is when an attempt has ended by itself, and left this.
  AttemptStop stopOfEnded(const std::string& name) {
    DownloadResume resume;
    resume.partialPath = name;
    sandbox.file(name, "some");
    auto progress = std::make_shared<AttemptProgress>();
    progress->setResume(resume);
    return {
        .attemptId = 7, .discard = true, .folder = sandbox.folder().string(), .progress = progress};
  }
  AttemptOutcome::Kind discard(const Orphan& orphan) {
    observer.discarded = {};
    runner.discard({1, orphan, {}});
    return observer.discarded.get_future().get();
  }

  CSandbox sandbox;
  CSystemClock clock;
  CNoLog log;
  CObserver observer;
  CHttpLoop loop{"zt-net-test", clock};
  CWorkerPool pool{"zt-disk-test"};
  CPosixFileOps ops;
  CDownloadRunner runner{{loop, pool, log, observer, ops}};
};

TEST_F(DownloadRunner, ClearsAwayWhatAnAttemptHasLeftThatEndedJustBeforeItWasStopped) {
  AttemptStop stop = stopOfEnded(".kept.part");
  stop.discard = false;
  runner.stop(stop);
  EXPECT_TRUE(observer.left.empty());
  runner.stop(stopOfEnded(".a.part"));
  ASSERT_EQ(observer.left.size(), 1U);
  EXPECT_EQ(discard(observer.left[0]), AttemptOutcome::Kind::kDone);
  EXPECT_FALSE(std::filesystem::exists(sandbox.folder() / ".a.part"));
  EXPECT_TRUE(std::filesystem::exists(sandbox.folder() / ".kept.part"));
  EXPECT_EQ(discard(observer.left[0]), AttemptOutcome::Kind::kDone);
  observer.left[0].folder += "/missing";  // a disk that is not mounted
  EXPECT_EQ(discard(observer.left[0]), AttemptOutcome::Kind::kRetry);
}

TEST_F(DownloadRunner, ClearsAwayNothingThatIsInUseOrAnotherFile) {
  const Orphan orphan = stopOfEnded(".a.part").orphan();
  const auto path = sandbox.folder() / ".a.part";
  {
    const CUniqueFd attempt(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(::flock(attempt.get(), LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(discard(orphan), AttemptOutcome::Kind::kRetry);
  }
  EXPECT_TRUE(std::filesystem::exists(path));
  std::filesystem::rename(path, sandbox.folder() / "published");
  std::filesystem::create_symlink("published", path);
  EXPECT_EQ(discard(orphan), AttemptOutcome::Kind::kDone);
  EXPECT_TRUE(std::filesystem::is_symlink(path));
  EXPECT_TRUE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace zt_transfers::test
