#include "services/contacts/wait_budget.h"

#include <gtest/gtest.h>

#include <thread>

namespace zantrio {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(WaitBudget, IsSpentByAllWaitsTogether) {
  CWaitBudget budget(200ms);
  const Clock::time_point begin = Clock::now();
  budget.wait();
  EXPECT_GE(Clock::now() - begin, 200ms);
  for (int time = 0; time < 100; ++time) {
    budget.wait();
  }
  EXPECT_LT(Clock::now() - begin, 10s);
}

TEST(WaitBudget, IsNotSpentOnceTheEventHasHappened) {
  CWaitBudget budget(1h);
  std::thread event([&] { budget.end(); });
  budget.wait();
  budget.wait();
  event.join();
}

}  // namespace
}  // namespace zantrio
