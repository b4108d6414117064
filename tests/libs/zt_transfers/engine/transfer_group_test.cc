#include "engine/transfer_group.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace zt_transfers::test {
namespace {

GroupIdentity identity() {
  GroupIdentity identity;
  identity.id = 7;
  return identity;
}

class TransferGroup : public ::testing::Test {
 protected:
  std::uint32_t run(std::uint64_t size) {
    const std::uint32_t index = group.append(size);
    group.takeWaiting();
    group.changePhase(index, FilePhase::kRunning);
    return index;
  }

  CTransferGroup group{identity(), true};
};

TEST_F(TransferGroup, AllowsOnlyTheStepsOfAFilesLife) {
  const auto file = group.append(1);
  EXPECT_THROW(group.changePhase(file, FilePhase::kCompleted), std::logic_error);
  EXPECT_THROW(group.changePhase(file, FilePhase::kBackingOff), std::logic_error);
  group.changePhase(file, FilePhase::kRunning);
  EXPECT_THROW(group.changePhase(file, FilePhase::kRunning), std::logic_error);
  group.changePhase(file, FilePhase::kRemoved);
  for (int phase = 0; phase < kFilePhaseCount; ++phase) {
    EXPECT_THROW(group.changePhase(file, static_cast<FilePhase>(phase)), std::logic_error);
  }
}

TEST_F(TransferGroup, HasTheStateThatItsFilesGiveIt) {
  EXPECT_EQ(group.state(true), kGroupIdle);
  const auto first = run(1);
  EXPECT_EQ(group.state(true), kGroupTransferring);
  EXPECT_EQ(group.state(false), kGroupIdle);
  const auto second = run(1);
  group.changePhase(first, FilePhase::kFailed);
  EXPECT_EQ(group.state(true), kGroupTransferring);
  group.changePhase(second, FilePhase::kCompleted);
  group.setMarked(true);
  EXPECT_EQ(group.state(true), kGroupErrored);
  group.changePhase(first, FilePhase::kWaiting);
  group.setPaused(true);
  EXPECT_EQ(group.state(true), kGroupPaused);
  group.changePhase(first, FilePhase::kRemoved);
  EXPECT_EQ(group.state(true), kGroupCompleted);
  group.setMarked(false);
  EXPECT_EQ(group.state(true), kGroupPaused);
  group.setCancelled();
  EXPECT_EQ(group.state(true), kGroupIdle);
}

TEST_F(TransferGroup, CompletesWithoutAMarkWhereNoneIsNeeded) {
  CTransferGroup download(identity(), false);
  EXPECT_EQ(download.state(true), kGroupIdle);
  download.append(0);
  download.takeWaiting();
  download.changePhase(0, FilePhase::kRunning);
  EXPECT_EQ(download.snapshot(true, {}).percentTransferred, 0.0F);
  download.changePhase(0, FilePhase::kCompleted);
  EXPECT_EQ(download.state(true), kGroupCompleted);
  EXPECT_EQ(download.snapshot(true, {}).percentTransferred, 100.0F);
  EXPECT_EQ(download.snapshot(true, {}).filesCompleted, 1);
}

TEST_F(TransferGroup, KeepsItsSumsInEveryCase) {
  const auto first = run(100);
  const auto second = run(300);
  group.addInFlight(50);
  auto shot = group.snapshot(true, {});
  EXPECT_EQ(shot.bytesTransferred, 50U);
  EXPECT_EQ(shot.bytesTotal, 400U);
  EXPECT_EQ(shot.percentTransferred, 12.5F);
  group.removeInFlight(50);
  group.setSize(first, 200);
  group.changePhase(first, FilePhase::kCompleted);
  group.setSize(first, 1);  // too late
  shot = group.snapshot(true, {});
  EXPECT_EQ(shot.bytesTransferred, 200U);
  EXPECT_EQ(shot.bytesTotal, 500U);
  group.changePhase(first, FilePhase::kRemoved);
  group.changePhase(second, FilePhase::kRemoved);
  shot = group.snapshot(true, {});
  EXPECT_EQ(shot.bytesTransferred, 0U);
  EXPECT_EQ(shot.bytesTotal, 0U);
  EXPECT_TRUE(shot.empty);
}

TEST_F(TransferGroup, TakesFilesThatComeBackBeforeNewOnes) {
  for (int count = 0; count < 4; ++count) {
    group.append(1);
  }
  ASSERT_EQ(group.takeWaiting(), 0U);
  group.changePhase(0, FilePhase::kRunning);
  group.changePhase(1, FilePhase::kRemoved);
  group.changePhase(0, FilePhase::kBackingOff);
  group.changePhase(0, FilePhase::kWaiting);
  EXPECT_EQ(group.takeWaiting(), 0U);
  EXPECT_EQ(group.takeWaiting(), 2U);
  EXPECT_EQ(group.takeWaiting(), 3U);
  EXPECT_FALSE(group.takeWaiting().has_value());
}

}  // namespace
}  // namespace zt_transfers::test
