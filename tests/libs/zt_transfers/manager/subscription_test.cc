#include "manager/subscription.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <stdexcept>
#include <thread>

namespace zt_transfers::test {
namespace {

TEST(Subscription, WaitsForACallThatIsUnderWay) {
  CSubscription<int> subscription;
  int callback = 0;
  subscription.set(&callback);
  std::promise<void> entered;
  std::promise<void> mayLeave;
  std::atomic<bool> left{false};
  std::thread caller([&] {
    subscription.call([&](int&) {
      entered.set_value();
      mayLeave.get_future().wait();
      left = true;
    });
  });
  entered.get_future().wait();
  std::thread leaver([&] { mayLeave.set_value(); });
  subscription.set(nullptr);
  EXPECT_TRUE(left);
  caller.join();
  leaver.join();
  subscription.call([](int&) { FAIL() << "called after it was taken away"; });
}

TEST(Subscription, CanBeTakenAwayFromWithinItsOwnCall) {
  CSubscription<int> subscription;
  int callback = 0;
  subscription.set(&callback);
  subscription.call([&](int&) { subscription.set(nullptr); });
  subscription.call([](int&) { FAIL() << "called after it was taken away"; });
}

TEST(Subscription, EndsACallWhoseCallbackThrows) {
  CSubscription<int> subscription;
  int callback = 0;
  subscription.set(&callback);
  EXPECT_THROW(subscription.call([](int&) { throw std::runtime_error("callback"); }),
               std::runtime_error);
  auto removed = std::async(std::launch::async, [&] { subscription.set(nullptr); });
  if (removed.wait_for(std::chrono::seconds(10)) != std::future_status::ready) {
    std::abort();  // it would wait for ever
  }
}

}  // namespace
}  // namespace zt_transfers::test
