#include <gtest/gtest.h>

#include "engine_fixture.h"

namespace zt_transfers::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

using Scheduling = CEngineFixture;

TEST_F(Scheduling, BeginsNothingBeforeItIsStarted) {
  const auto group = groupOf(2);
  EXPECT_TRUE(starts().empty());
  EXPECT_EQ(stateOf(group), kGroupIdle);
  EXPECT_TRUE(events<GroupSnapshot>().empty());
  engine.start();
  EXPECT_EQ(starts().size(), 2U);
  EXPECT_EQ(stateOf(group), kGroupTransferring);
  ASSERT_FALSE(events<GroupSnapshot>().empty());
}

TEST_F(Scheduling, LetsGroupsTakeTurns) {
  concurrent(4);
  groupOf(10);
  groupOf(10);
  engine.start();
  EXPECT_EQ(idsOf(starts()), (std::vector<std::string>{"1-0", "2-0", "1-1", "2-1"}));
}

// What came alone may have all places; what comes later gets those that become free.
TEST_F(Scheduling, SharesThePlacesBetweenGroupsAndBetweenOrigins) {
  concurrent(8);
  groupAt("a", 100);
  engine.start();
  std::vector<StartOrder> running = starts();
  ASSERT_EQ(running.size(), 8U);
  for (int group = 0; group < 20; ++group) {
    groupAt("a", 100);
  }
  const auto other = groupAt("b", 100);
  std::size_t ofFirst = 8;
  std::size_t ofOther = 0;
  for (const StartOrder& ended : running) {
    engine.onAttemptDone(ended.attemptId, AttemptOutcome::done());
    const auto next = starts();
    ASSERT_EQ(next.size(), 1U);
    ofFirst -= next[0].file.groupId == 1 ? 0 : 1;
    ofOther += next[0].file.groupId == other ? 1 : 0;
  }
  EXPECT_LE(ofFirst, 1U);
  EXPECT_GE(ofOther, 2U);
}

TEST_F(Scheduling, FillsEachPlaceThatBecomesFree) {
  concurrent(2);
  const auto group = groupOf(3);
  engine.start();
  const auto first = starts();
  ASSERT_EQ(first.size(), 2U);
  EXPECT_TRUE(starts().empty());
  engine.onAttemptDone(first[1].attemptId, AttemptOutcome::done());
  const auto next = starts();
  EXPECT_EQ(idsOf(next), std::vector<std::string>{"1-2"});
  engine.onAttemptDone(first[0].attemptId, AttemptOutcome::done());
  engine.onAttemptDone(next[0].attemptId, AttemptOutcome::done());
  EXPECT_EQ(stateOf(group), kGroupCompleted);
  EXPECT_EQ(engine.group(group)->bytesTransferred, 300U);
}

TEST_F(Scheduling, RetriesOnceItsTimeHasComeAndNotMoreOftenThanAllowed) {
  concurrent(1, 2);
  const auto group = groupOf(1);
  engine.start();
  for (int attempt = 0; attempt < 2; ++attempt) {
    const auto orders = starts();
    ASSERT_EQ(orders.size(), 1U) << attempt;
    engine.onAttemptDone(orders[0].attemptId, AttemptOutcome::retry("x"));
    const auto work = engine.takeWork();
    EXPECT_TRUE(work.starts.empty());
    ASSERT_TRUE(work.nextDue.has_value());
    const auto wait = *work.nextDue - clock.now();
    EXPECT_GE(wait, milliseconds(500 << attempt));
    EXPECT_LE(wait, milliseconds(1000 << attempt));
    EXPECT_EQ(stateOf(group), kGroupTransferring);
    clock.pass(wait);
  }
  engine.onAttemptDone(starts().at(0).attemptId, AttemptOutcome::retry("x"));
  EXPECT_EQ(stateOf(group), kGroupErrored);
}

TEST_F(Scheduling, RetriesOnceAfterABrokenConnectionEvenIfNoRetryIsAllowed) {
  concurrent(1, 0);
  const auto group = groupOf(1);
  engine.start();
  AttemptOutcome broken = AttemptOutcome::retry("reset", failure::kConnectionLost);
  broken.retryBudget = AttemptOutcome::RetryBudget::kAtLeastOne;
  engine.onAttemptDone(starts().at(0).attemptId, broken);
  EXPECT_NE(log.text().find(": attempt 1 of 2 failed, next in "), std::string::npos) << log.text();
  clock.pass(seconds(1));
  engine.onAttemptDone(starts().at(0).attemptId, broken);
  EXPECT_EQ(stateOf(group), kGroupErrored);
}

TEST_F(Scheduling, GivesAFileThatIsQueuedAgainAllOfItsRetries) {
  concurrent(1, 1);
  const auto group = groupOf(1);
  engine.start();
  const auto failOnce = [&] {
    const auto order = starts().at(0);
    engine.onAttemptDone(order.attemptId, AttemptOutcome::retry("x"));
    clock.pass(seconds(8));
    return order.spec;
  };
  failOnce();
  const FileSpec spec = failOnce();
  ASSERT_EQ(stateOf(group), kGroupErrored);
  engine.queueFiles(group, {spec});
  failOnce();
  EXPECT_EQ(stateOf(group), kGroupTransferring);
  failOnce();
  EXPECT_EQ(stateOf(group), kGroupErrored);
}

TEST_F(Scheduling, CountsMoreRetriesThan16BitsHold) {
  constexpr std::uint32_t kRetries = 65'537;
  concurrent(1, kRetries);
  const auto group = groupOf(1);
  engine.start();
  for (std::uint32_t attempt = 0; attempt <= kRetries; ++attempt) {
    ASSERT_EQ(stateOf(group), kGroupTransferring) << attempt;
    engine.onAttemptDone(starts().at(0).attemptId, AttemptOutcome::retry("x"));
    clock.pass(seconds(8));
    events<FileState>();
  }
  EXPECT_EQ(stateOf(group), kGroupErrored);
}

TEST_F(Scheduling, FailsFilesWhoseTokenExpiresWhileTheyWait) {
  concurrent(1);
  const auto group = groupOf(3, 1'000'060);
  engine.start();
  const auto order = starts().at(0);
  clock.pass(seconds(60));
  engine.onAttemptDone(order.attemptId, AttemptOutcome::done());
  EXPECT_EQ(engine.takeWork().failures.size(), 2U);
  EXPECT_EQ(stateOf(group), kGroupErrored);
}

TEST_F(Scheduling, BeginsNothingWhileTheProgramHasNotTakenItsEvents) {
  groupOf(1);
  engine.start();
  for (std::size_t count = 0; count <= CEventQueue::kCongestion; ++count) {
    queue.push(FileState());
  }
  EXPECT_TRUE(starts().empty());
  events<FileState>();
  EXPECT_EQ(starts().size(), 1U);
}

TEST_F(Scheduling, HandlesFilesThatCannotBeginInBatches) {
  const auto group = groupOf(2000, 1);
  engine.start();
  const auto work = engine.takeWork();
  EXPECT_LT(work.failures.size(), 2000U);
  ASSERT_TRUE(work.nextDue.has_value());
  EXPECT_LE(*work.nextDue, clock.now());
  std::size_t failed = work.failures.size();
  while (failed < 2000) {
    events<FileState>();
    const std::size_t more = engine.takeWork().failures.size();
    ASSERT_NE(more, 0U);
    failed += more;
  }
  EXPECT_EQ(stateOf(group), kGroupErrored);
}

}  // namespace
}  // namespace zt_transfers::test
