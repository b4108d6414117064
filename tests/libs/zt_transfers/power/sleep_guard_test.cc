#include "power/sleep_guard.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <future>
#include <mutex>

namespace zt_transfers::test {
namespace {

using namespace std::chrono_literals;

// What the guard asked the system for.
class CRecord {
 public:
  void add(char call) {
    {
      const std::lock_guard lock(mutex_);
      calls_ += call;
    }
    changed_.notify_all();
  }
  std::string calls() {
    const std::lock_guard lock(mutex_);
    return calls_;
  }
  bool waitFor(const std::string& calls) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, 60s, [&] { return calls_ == calls; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::string calls_;  // guarded by mutex_; i: inhibit, r: release
};

class CRecordingInhibitor final : public ISleepInhibitor {
 public:
  explicit CRecordingInhibitor(CRecord& record) : record_(record) {}
  void inhibit() override { record_.add('i'); }
  void release() override { record_.add('r'); }

 private:
  CRecord& record_;
};

class SleepGuard : public ::testing::Test {
 protected:
  static std::unique_ptr<CSleepGuard> make(CRecord& record, std::chrono::milliseconds linger) {
    auto guard = std::make_unique<CSleepGuard>(
        "test-wake", std::make_unique<CRecordingInhibitor>(record), linger);
    guard->start();
    return guard;
  }

  CRecord record;
  std::unique_ptr<CSleepGuard> guard = make(record, 0ms);
};

TEST_F(SleepGuard, HoldsTheMachineAwakeFromTheFirstTransferToTheEndOfTheLast) {
  guard->setWanted(true);
  guard->setTransferring(true);
  EXPECT_TRUE(record.waitFor("i"));
  guard->setTransferring(true);
  guard->setTransferring(false);
  EXPECT_TRUE(record.waitFor("ir"));
  guard->setTransferring(true);
  EXPECT_TRUE(record.waitFor("iri"));
}

TEST_F(SleepGuard, AsksForNothingWithoutATransferOrTheSetting) {
  guard->setWanted(true);
  guard->setWanted(false);
  guard->setTransferring(true);
  guard->setTransferring(false);
  guard->stop();
  EXPECT_EQ(record.calls(), "");
}

TEST_F(SleepGuard, LetsTheMachineSleepWhenItStopsAndCanBeStartedAgain) {
  guard->setWanted(true);
  guard->setTransferring(true);
  ASSERT_TRUE(record.waitFor("i"));
  guard->stop();
  EXPECT_EQ(record.calls(), "ir");
  guard->start();
  EXPECT_TRUE(record.waitFor("iri"));
}

TEST_F(SleepGuard, StaysOverAShortPauseBetweenTransfers) {
  CRecord longRecord;
  const auto patient = make(longRecord, 1h);
  patient->setWanted(true);
  for (int transfer = 0; transfer < 3; ++transfer) {
    patient->setTransferring(true);
    ASSERT_TRUE(longRecord.waitFor("i"));
    patient->setTransferring(false);
  }
  patient->setWanted(false);
  EXPECT_TRUE(longRecord.waitFor("ir"));
}

}  // namespace
}  // namespace zt_transfers::test
