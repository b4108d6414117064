#include "app/shutdown_signals.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <vector>

namespace zantrio {
namespace {

// Records the calls of ShutdownSignals, and waits for them.
class Requests {
 public:
  void add(bool force) {
    const std::lock_guard lock(mutex_);
    forces_.push_back(force);
    changed_.notify_all();
  }
  bool waitFor(const std::vector<bool>& expected) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(30), [&] { return forces_ == expected; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<bool> forces_;
};

TEST(ShutdownSignals, AskFirstAndForceThen) {
  Requests requests;
  const ShutdownSignals signals([&](bool force) { requests.add(force); });
  raise(SIGTERM);
  EXPECT_TRUE(requests.waitFor({false}));
  raise(SIGINT);
  EXPECT_TRUE(requests.waitFor({false, true}));
}

TEST(ShutdownSignals, EndWithoutASignalAndBeginAnew) {
  Requests requests;
  for (int i = 0; i < 100; ++i) {
    const ShutdownSignals signals([&](bool force) { requests.add(force); });
  }
  const ShutdownSignals signals([&](bool force) { requests.add(force); });
  raise(SIGHUP);
  EXPECT_TRUE(requests.waitFor({false}));
}

TEST(ShutdownSignalsDeathTest, LeaveTheThirdSignalToTheSystem) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        Requests requests;
        const ShutdownSignals signals([&](bool force) { requests.add(force); });
        raise(SIGTERM);
        raise(SIGTERM);
        requests.waitFor({false, true});
        raise(SIGTERM);
      },
      testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace zantrio
