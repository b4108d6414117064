#include "services/contacts/patience.h"

#include <gtest/gtest.h>

#include <thread>

namespace zantrio {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

template <class Action>
Clock::duration timeOf(const Action& action) {
  const Clock::time_point begin = Clock::now();
  action();
  return Clock::now() - begin;
}

TEST(Patience, IsSpentOnAllWaitsTogether) {
  CPatience patience(200ms);
  EXPECT_GE(timeOf([&] { patience.wait(); }), 200ms);
  EXPECT_LT(timeOf([&] {
              for (int time = 0; time < 100; ++time) {
                patience.wait();
              }
            }),
            10s);
}

TEST(Patience, IsNotNeededOnceTheEndHasCome) {
  CPatience patience(1h);
  std::thread ending([&] { patience.end(); });
  patience.wait();
  patience.wait();
  ending.join();
}

}  // namespace
}  // namespace zantrio
