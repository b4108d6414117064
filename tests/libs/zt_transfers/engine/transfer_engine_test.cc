#include <gtest/gtest.h>

#include "engine_fixture.h"

namespace zt_transfers::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

using TransferEngine = CEngineFixture;

TEST_F(TransferEngine, TransfersWhatWasStoredAndCouldNotBeReadBefore) {
  engine.restore({.lastGroupId = 1000, .lastOrphanId = 1000});
  engine.start();
  EXPECT_EQ(groupOf(1), 1001);
  RestoredQueue stored{.lastGroupId = 7};
  stored.groups.emplace_back().group.identity.id = 5;
  stored.groups[0].files.emplace_back();
  store.restoreGroup(5);
  FileSpec spec;
  spec.fileId = "stored";
  store.append(5, spec, {});
  events<GroupSnapshot>();
  engine.adopt(std::move(stored));
  EXPECT_EQ(events<GroupSnapshot>().front().id, 5);
  EXPECT_EQ(idsOf(starts()), (std::vector<std::string>{"1001-0", "stored"}));
  EXPECT_EQ(groupOf(0), 1002);
}

TEST_F(TransferEngine, ForgetsCompletedGroupsWhenAskedAndTheOldestBeyondAThousand) {
  concurrent(2000);
  engine.start();
  const auto complete = [this] {
    for (auto orders = starts(); !orders.empty(); orders = starts()) {
      for (const StartOrder& order : orders) {
        engine.onAttemptDone(order.attemptId, AttemptOutcome::done());
      }
      events<GroupSnapshot>();  // while many wait, nothing is begun
    }
  };
  const auto cleared = groupOf(1);
  complete();
  engine.cancelGroup(cleared);
  const auto told = events<GroupSnapshot>();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_TRUE(told[0].cancelled);
  EXPECT_EQ(told[0].filesCompleted, 0);  // so that the program does not open its folder again
  EXPECT_FALSE(engine.group(cleared).has_value());
  EXPECT_FALSE(store.find(cleared, "1-0").has_value());

  const auto late = groupOf(1);
  const auto lateOrder = starts().front();
  for (int number = 0; number < 1001; ++number) {
    groupOf(1);
  }
  events<GroupSnapshot>();
  complete();
  EXPECT_FALSE(engine.group(late + 1).has_value());
  EXPECT_TRUE(engine.group(late + 2).has_value());
  engine.onAttemptDone(lateOrder.attemptId, AttemptOutcome::done());
  EXPECT_EQ(stateOf(late), kGroupCompleted);  // it was told just now
  EXPECT_FALSE(engine.group(late + 2).has_value());
  EXPECT_EQ(engine.groups().size(), 1000U);
}

TEST_F(TransferEngine, TellsWhyItsNewestFilesFailedUntilTheyGetAnotherChance) {
  concurrent(200);
  const auto group = groupOf(150);
  engine.start();
  const auto orders = starts();
  for (const StartOrder& order : orders) {
    engine.onAttemptDone(
        order.attemptId,
        AttemptOutcome::final("no\n" + order.spec.fileId + std::string(291, 'x') + "\u00fc\u00fc",
                              failure::kRefused));
  }
  auto report = engine.report(group).value();
  EXPECT_EQ(report.filesFailed, 150U);
  ASSERT_EQ(report.failures.size(), 100U);
  EXPECT_EQ(report.failures.front().fileId, "1-149");
  EXPECT_EQ(report.failures.back().fileId, "1-50");
  EXPECT_EQ(report.failures.front().failure.code, "refused");
  // Cut, but not within a character.
  EXPECT_EQ(report.failures.front().failure.reason, "no 1-149" + std::string(291, 'x'));
  EXPECT_EQ(report.failures.front().failure.reason.find("no 1-149x"), 0U);
  engine.resumeGroup(group);
  report = engine.report(group).value();
  EXPECT_EQ(report.filesFailed, 0U);
  EXPECT_TRUE(report.failures.empty());
}

TEST_F(TransferEngine, TellsProgressAtMostTenTimesASecondAndTheLastAlways) {
  groupOf(1);
  engine.start();
  const auto order = starts().at(0);
  events<FileState>();
  int reported = 0;
  for (int tick = 1; tick <= 50; ++tick) {
    clock.pass(milliseconds(20));
    order.progress->bytes = static_cast<std::uint64_t>(tick);
    engine.collectProgress();
    reported += static_cast<int>(events<FileState>().size());
  }
  EXPECT_GE(reported, 9);
  EXPECT_LE(reported, 10);
  engine.onAttemptDone(order.attemptId, AttemptOutcome::done());
  const auto last = events<GroupSnapshot>();
  ASSERT_FALSE(last.empty());
  EXPECT_EQ(last.back().state, kGroupCompleted);
  EXPECT_EQ(last.back().bytesTransferred, 100U);
  EXPECT_FALSE(engine.collectProgress());
}

}  // namespace
}  // namespace zt_transfers::test
