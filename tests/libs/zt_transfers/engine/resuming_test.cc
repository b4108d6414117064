#include <gtest/gtest.h>

#include "engine_fixture.h"

namespace zt_transfers::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

using Resuming = CEngineFixture;

DownloadResume halfOfAFile() {
  DownloadResume resume;
  resume.partialPath = ".half";
  resume.written = {{0, 50}};
  return resume;
}

UploadSession sessionOf(const std::string& id) {
  UploadSession session;
  session.uploadId = id;
  return session;
}

TEST_F(Resuming, IgnoresTheResultOfWhatItHasStopped) {
  const auto group = groupOf(1);
  engine.start();
  const auto order = starts().at(0);
  order.progress->bytes = 60;
  engine.collectProgress();
  EXPECT_EQ(engine.group(group)->bytesTransferred, 60U);
  engine.pauseGroup(group);
  EXPECT_EQ(engine.group(group)->bytesTransferred, 0U);
  EXPECT_EQ(stopsOf(engine.takeWork()), (Stops{{order.attemptId, true}}));
  engine.onAttemptDone(order.attemptId, AttemptOutcome::done());
  EXPECT_EQ(stateOf(group), kGroupPaused);
  engine.resumeGroup(group);
  const auto again = starts().at(0);
  EXPECT_NE(again.attemptId, order.attemptId);
  engine.onAttemptDone(again.attemptId, AttemptOutcome::done());
  EXPECT_EQ(stateOf(group), kGroupCompleted);
}

TEST_F(Resuming, CountsNoByteTwiceWhateverAttemptsReport) {
  const auto group = groupOf(1);
  engine.start();
  for (int attempt = 0; attempt < 3; ++attempt) {
    clock.pass(seconds(10));
    const auto order = starts().at(0);
    order.progress->bytes = 1000;  // more than there is
    engine.collectProgress();
    EXPECT_EQ(engine.group(group)->bytesTransferred, 100U);
    EXPECT_EQ(engine.group(group)->percentTransferred, 100.0F);
    engine.onAttemptDone(order.attemptId, AttemptOutcome::retry("x"));
    EXPECT_EQ(engine.group(group)->bytesTransferred, 0U);
  }
}

TEST_F(Resuming, GivesTheNextAttemptWhatTheLastOneLeftAndKeepsItsBytesCounted) {
  const auto group = groupOf(1);
  engine.start();
  const auto order = starts().at(0);
  EXPECT_FALSE(order.resume.begun());
  EXPECT_EQ(order.salt, store.salt());
  order.progress->bytes = 60;
  order.progress->setResume(halfOfAFile());
  engine.pauseGroup(group);
  EXPECT_EQ(stopsOf(engine.takeWork()), (Stops{{order.attemptId, false}}));
  EXPECT_EQ(engine.group(group)->bytesTransferred, 50U);
  engine.resumeGroup(group);
  const auto next = starts().at(0);
  EXPECT_EQ(next.resume, halfOfAFile());
  engine.collectProgress();
  EXPECT_EQ(engine.group(group)->bytesTransferred, 50U);
  engine.onAttemptDone(next.attemptId, AttemptOutcome::retry("x"));
  EXPECT_EQ(engine.group(group)->bytesTransferred, 50U);
  clock.pass(seconds(2));
  const auto last = starts().at(0);
  EXPECT_EQ(last.resume, halfOfAFile());
  engine.onAttemptDone(last.attemptId, AttemptOutcome::done());
  EXPECT_EQ(engine.group(group)->bytesTransferred, 100U);
}

TEST_F(Resuming, LetsWhatIsLeftOfFilesThatNobodyWantsBeRemoved) {
  concurrent(1);
  const auto group = groupOf(3);
  engine.start();
  const auto order = starts().at(0);
  order.progress->setResume(halfOfAFile());
  engine.onAttemptDone(order.attemptId, AttemptOutcome::final("x"));
  EXPECT_EQ(engine.group(group)->bytesTransferred, 50U);
  engine.dequeueFiles(group, {order.spec.fileId});
  auto work = engine.takeWork();
  ASSERT_EQ(work.cleanups.size(), 1U);
  EXPECT_EQ(work.cleanups[0].orphan.resume, halfOfAFile());
  engine.onCleanedUp(work.cleanups[0].id, AttemptOutcome::done());
  EXPECT_EQ(engine.group(group)->bytesTransferred, 0U);
  const auto running = work.starts.at(0);
  engine.cancelGroup(group);
  work = engine.takeWork();
  EXPECT_EQ(stopsOf(work), (Stops{{running.attemptId, true}}));
  EXPECT_TRUE(work.cleanups.empty());
  // It had ended by itself before it could be stopped.
  running.progress->setResume(halfOfAFile());
  engine.onOrphaned(work.stops[0].orphan());
  EXPECT_EQ(engine.takeWork().cleanups.at(0).orphan.resume, halfOfAFile());
}

TEST_F(Resuming, DiscardsAfterTheNextStartWhatACancelJustBeforeTheEndHasLeft) {
  const auto group = groupOf(2);
  engine.start();
  const auto orders = starts();
  orders[0].progress->setResume(halfOfAFile());
  orders[1].progress->setResume(sessionOf("id"));
  engine.cancelGroup(group);
  engine.stop();  // nobody was told to stop the attempts any more
  engine.start();
  const auto cleanups = engine.takeWork().cleanups;
  ASSERT_EQ(cleanups.size(), 2U);
  EXPECT_EQ(cleanups[0].orphan.resume, halfOfAFile());
  EXPECT_EQ(cleanups[1].orphan.resume, TransferResume(sessionOf("id")));
}

// A renewed URL may resume the partial file; another location must not.
TEST_F(Resuming, DiscardsThePartialFileOfAFileThatIsQueuedForAnotherLocation) {
  const auto group = groupOf(1);
  engine.start();
  auto order = starts().at(0);
  order.progress->setResume(halfOfAFile());
  engine.onAttemptDone(order.attemptId, AttemptOutcome::final("x"));
  FileSpec spec = order.spec;
  spec.url = "http://renewed/";
  engine.queueFiles(group, {spec});
  order = starts().at(0);
  EXPECT_EQ(order.resume, halfOfAFile());
  engine.onAttemptDone(order.attemptId, AttemptOutcome::final("x"));
  spec.location = "elsewhere";
  engine.queueFiles(group, {spec});
  const auto work = engine.takeWork();
  EXPECT_FALSE(work.starts.at(0).resume.begun());
  EXPECT_EQ(work.cleanups.at(0).orphan.resume, halfOfAFile());
  EXPECT_EQ(engine.group(group)->bytesTransferred, 0U);
}

TEST_F(Resuming, DiscardsAPartialFileThatAnotherOneReplaces) {
  groupOf(1);
  engine.start();
  const auto order = starts().at(0);
  order.progress->setResume(halfOfAFile());
  engine.onAttemptDone(order.attemptId, AttemptOutcome::retry("x"));
  clock.pass(seconds(2));
  const auto next = starts().at(0);
  DownloadResume other = halfOfAFile();
  other.partialPath = ".other";
  next.progress->setResume(other);
  engine.onAttemptCheckpoint(next.attemptId);
  auto cleanups = engine.takeWork().cleanups;
  ASSERT_EQ(cleanups.size(), 1U);
  EXPECT_EQ(cleanups[0].orphan.resume, halfOfAFile());
  engine.onCleanedUp(cleanups[0].id, AttemptOutcome::done());
  next.progress->setResume({});  // its content was wrong
  engine.onAttemptDone(next.attemptId, AttemptOutcome::retry("x"));
  cleanups = engine.takeWork().cleanups;
  ASSERT_EQ(cleanups.size(), 1U);
  EXPECT_EQ(cleanups[0].orphan.resume, other);
}

// The size of an upload is found beside its transfer, or after a restart.
TEST_F(Resuming, CountsWhatIsThereOnceTheSizeIsKnown) {
  QueueBatch batch;
  store.record({.changed = [] {}, .requested = [] {}});
  const auto group = groupOf(1);
  FileSpec unknown = specOf(group, 0);
  unknown.size = 0;
  engine.queueFiles(group, {unknown});
  engine.start();
  const auto order = starts().at(0);
  order.progress->setResume(halfOfAFile());
  order.progress->size = 80;
  store.collect(100);
  engine.collectProgress();
  batch = store.collect(100);
  ASSERT_EQ(batch.writes.size(), 1U);
  EXPECT_EQ(batch.writes[0].change.state.size, 80U);
  engine.stop();
  EXPECT_EQ(engine.group(group)->bytesTransferred, 50U);
  engine.applySizes({{{group, 0}, 40}});
  EXPECT_EQ(engine.group(group)->bytesTransferred, 40U);
}

TEST_F(Resuming, LeavesAloneWhatANewAttemptForTheSameFileHasTakenOver) {
  const auto group = groupOf(1);
  engine.start();
  const auto order = starts().at(0);
  order.progress->setResume(halfOfAFile());
  engine.onAttemptDone(order.attemptId, AttemptOutcome::final("x"));
  engine.dequeueFiles(group, {order.spec.fileId});
  engine.onCleanedUp(engine.takeWork().cleanups.at(0).id, AttemptOutcome::retry("disk gone"));
  engine.queueFiles(group, {order.spec});
  const auto next = starts().at(0);
  EXPECT_FALSE(next.resume.begun());
  next.progress->setResume(halfOfAFile());
  engine.onAttemptCheckpoint(next.attemptId);
  clock.pass(std::chrono::hours(1));
  EXPECT_TRUE(engine.takeWork().cleanups.empty());
}

TEST_F(Resuming, DiscardsAFewAtATimeAndBacksOffAfterAFailureUntilItGivesUp) {
  engine.start();
  for (const char* id : {"a", "b", "c", "d", "e"}) {
    engine.onOrphaned({.resume = sessionOf(id)});
  }
  auto work = engine.takeWork();
  ASSERT_EQ(work.cleanups.size(), 4U);
  EXPECT_TRUE(engine.takeWork().cleanups.empty());
  for (std::size_t at = 0; at < 3; ++at) {
    engine.onCleanedUp(work.cleanups[at].id, AttemptOutcome::done());
  }
  engine.onCleanedUp(work.cleanups[3].id, AttemptOutcome::retry("x"));
  for (int failures = 1; failures <= 6; ++failures) {
    work = engine.takeWork();
    EXPECT_TRUE(work.cleanups.empty());
    const auto wait = work.nextDue.value() - clock.now();
    EXPECT_GE(wait, milliseconds(std::min(500 << (failures - 1), 4000)));
    EXPECT_LE(wait, seconds(8));
    clock.pass(wait);
    work = engine.takeWork();
    ASSERT_EQ(work.cleanups.size(), 2U);
    for (const CleanupTask& order : work.cleanups) {
      engine.onCleanedUp(order.id, AttemptOutcome::retry("x"));
    }
  }
  clock.pass(std::chrono::hours(24 * 7));
  for (const CleanupTask& order : engine.takeWork().cleanups) {
    engine.onCleanedUp(order.id, AttemptOutcome::retry("x"));
  }
  clock.pass(seconds(8));
  work = engine.takeWork();
  EXPECT_TRUE(work.cleanups.empty());
  EXPECT_FALSE(work.nextDue.has_value());
}

TEST_F(Resuming, LetsAFileThatIsFinalizedMakeRoomAndNoLongerBePaused) {
  concurrent(1);
  const auto group = groupOf(2);
  engine.start();
  const auto finalization = starts().at(0);
  EXPECT_TRUE(engine.onAttemptFinalizing(finalization.attemptId));
  const auto next = starts().at(0);
  engine.pauseGroup(group);
  EXPECT_EQ(stopsOf(engine.takeWork()), (Stops{{next.attemptId, true}}));
  EXPECT_FALSE(engine.onAttemptFinalizing(next.attemptId));
  engine.onAttemptDone(finalization.attemptId, AttemptOutcome::done());
  EXPECT_EQ(engine.group(group)->filesCompleted, 1);
}

TEST_F(Resuming, PutsEverythingBackWhenItStops) {
  concurrent(2);
  const auto group = groupOf(3);
  engine.start();
  const auto orders = starts();
  orders[0].progress->bytes = 50;
  engine.collectProgress();
  engine.onAttemptDone(orders[1].attemptId, AttemptOutcome::retry("x"));
  events<FileState>();
  engine.stop();
  EXPECT_TRUE(events<FileState>().empty());
  EXPECT_EQ(engine.group(group)->bytesTransferred, 0U);
  EXPECT_EQ(stateOf(group), kGroupIdle);
  engine.start();
  EXPECT_EQ(starts().size(), 2U);
}

}  // namespace
}  // namespace zt_transfers::test
