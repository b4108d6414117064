#include "engine/transfer_engine.h"

#include <gtest/gtest.h>

#include <variant>

#include "store/queue_cache.h"

namespace zt_transfers::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class CHandClock : public IClock {
 public:
  TimePoint now() const override { return now_; }
  std::int64_t secondsSince1970() const override { return unix_; }
  void pass(Duration time) {
    now_ += time;
    unix_ += std::chrono::duration_cast<seconds>(time).count();
  }

 private:
  TimePoint now_{std::chrono::hours(100)};
  std::int64_t unix_ = 1'000'000;
};

class CTextLog : public ILog {
 public:
  void write(Priority, std::string_view line) noexcept override { text_ += line; }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

// The test acts as the network thread: it asks for work and reports outcomes.
class TransferEngine : public ::testing::Test {
 protected:
  std::int32_t groupOf(int files, std::uint64_t expires = 0) {
    GroupIdentity identity;
    identity.bucketId = "bucket";
    identity.tokenExpires = expires;
    const std::int32_t id = engine.createGroup(identity);
    std::vector<FileSpec> specs(static_cast<std::size_t>(files));
    for (std::size_t at = 0; at < specs.size(); ++at) {
      specs[at].fileId = std::to_string(id) + "-" + std::to_string(at);
      specs[at].size = 100;
    }
    engine.queueFiles(id, specs);
    engine.setMarked(id, true);
    return id;
  }
  std::vector<StartOrder> starts() { return engine.takeWork().starts; }
  std::vector<std::string> idsOf(const std::vector<StartOrder>& orders) {
    std::vector<std::string> ids;
    for (const StartOrder& order : orders) {
      ids.push_back(order.spec.fileId);
    }
    return ids;
  }
  void concurrent(std::uint32_t max, std::uint32_t retries = 5) {
    engine.setSettings({.maxConcurrent = max, .maxRetries = retries, .proxy = {}});
  }
  template <typename Event>
  std::vector<Event> events() {
    std::vector<Event> chosen;
    for (const TransferEvent& event : queue.take(Duration::zero())) {
      if (const auto* one = std::get_if<Event>(&event)) {
        chosen.push_back(*one);
      }
    }
    return chosen;
  }
  using Stops = std::vector<std::pair<AttemptId, bool>>;  // and whether to discard their files
  static Stops stopsOf(const TransferWork& work) {
    Stops stops;
    for (const AttemptStop& stop : work.stops) {
      stops.emplace_back(stop.attemptId, stop.discard);
    }
    return stops;
  }
  GroupStateCode stateOf(std::int32_t id) {
    return static_cast<GroupStateCode>(engine.group(id)->state);
  }

  CHandClock clock;
  CQueueCache store;
  CEventQueue queue;
  CTextLog log;
  CTransferEngine engine{{.activity = "upload",
                          .statsSources = false,
                          .backoff = {.base = milliseconds(1000), .cap = milliseconds(8000)}},
                         {.clock = clock, .store = store, .events = queue, .log = log}};
};

TEST_F(TransferEngine, BeginsNothingBeforeItIsStarted) {
  const auto group = groupOf(2);
  EXPECT_TRUE(starts().empty());
  EXPECT_EQ(stateOf(group), kGroupIdle);
  EXPECT_TRUE(events<GroupSnapshot>().empty());
  engine.start();
  EXPECT_EQ(starts().size(), 2U);
  EXPECT_EQ(stateOf(group), kGroupTransferring);
  ASSERT_FALSE(events<GroupSnapshot>().empty());
}

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

TEST_F(TransferEngine, LetsGroupsTakeTurns) {
  concurrent(4);
  groupOf(10);
  groupOf(10);
  engine.start();
  EXPECT_EQ(idsOf(starts()), (std::vector<std::string>{"1-0", "2-0", "1-1", "2-1"}));
}

TEST_F(TransferEngine, FillsEachPlaceThatBecomesFree) {
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

TEST_F(TransferEngine, RetriesOnceItsTimeHasComeAndNotMoreOftenThanAllowed) {
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

TEST_F(TransferEngine, DelaysAGroupAfterAnOutageAndNotTheOthers) {
  concurrent(1);
  const auto delayed = groupOf(5);
  engine.start();
  const auto order = starts().at(0);
  AttemptOutcome overloaded = AttemptOutcome::retry("503");
  overloaded.scope = AttemptOutcome::Scope::kOrigin;
  overloaded.retryAfter = seconds(20);
  engine.onAttemptDone(order.attemptId, overloaded);
  EXPECT_TRUE(starts().empty());
  groupOf(1);
  const auto other = starts();
  EXPECT_EQ(idsOf(other), std::vector<std::string>{"2-0"});
  engine.onAttemptDone(other[0].attemptId, AttemptOutcome::done());
  clock.pass(seconds(19));
  EXPECT_TRUE(starts().empty());
  clock.pass(seconds(1));
  EXPECT_EQ(starts().at(0).file.groupId, delayed);
}

TEST_F(TransferEngine, WaitsForAServerThatIsAwayWithoutUsingUpARetry) {
  concurrent(1, 0);
  const auto group = groupOf(1);
  engine.start();
  AttemptOutcome away = AttemptOutcome::retry("nobody answers", failure::kCannotConnect);
  away.scope = AttemptOutcome::Scope::kOrigin;
  away.retryBudget = AttemptOutcome::RetryBudget::kFree;
  for (int attempt = 0; attempt < 10; ++attempt) {
    engine.onAttemptDone(starts().at(0).attemptId, away);
    EXPECT_EQ(engine.report(group)->waitingFor, (Failure{"cannot_connect", "nobody answers"}));
    const auto wait = engine.takeWork().nextDue.value() - clock.now();
    EXPECT_LE(wait, seconds(8));
    clock.pass(seconds(8));
  }
  engine.onAttemptDone(starts().at(0).attemptId, away);
  engine.resumeGroup(group);  // the user, or the page, knows that it is over
  EXPECT_FALSE(engine.report(group)->waitingFor);
  engine.onAttemptDone(starts().at(0).attemptId, AttemptOutcome::retry("500"));
  EXPECT_EQ(stateOf(group), kGroupErrored);
}

TEST_F(TransferEngine, RetriesOnceAfterABrokenConnectionEvenIfNoRetryIsAllowed) {
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

TEST_F(TransferEngine, IgnoresTheResultOfWhatItHasStopped) {
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

TEST_F(TransferEngine, CountsNoByteTwiceWhateverAttemptsReport) {
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

TEST_F(TransferEngine, GivesTheNextAttemptWhatTheLastOneLeftAndKeepsItsBytesCounted) {
  const auto group = groupOf(1);
  engine.start();
  const auto order = starts().at(0);
  EXPECT_FALSE(order.resume.begun());
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

TEST_F(TransferEngine, LetsWhatIsLeftOfFilesThatNobodyWantsBeRemoved) {
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

TEST_F(TransferEngine, DiscardsAfterTheNextStartWhatACancelJustBeforeTheEndHasLeft) {
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

TEST_F(TransferEngine, GivesAFileThatIsQueuedAgainAllOfItsRetries) {
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

TEST_F(TransferEngine, CountsMoreRetriesThan16BitsHold) {
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

// A renewed URL may resume the partial file; another location must not.
TEST_F(TransferEngine, DiscardsThePartialFileOfAFileThatIsQueuedForAnotherLocation) {
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

TEST_F(TransferEngine, DiscardsAPartialFileThatAnotherOneReplaces) {
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

TEST_F(TransferEngine, LeavesAloneWhatANewAttemptForTheSameFileHasTakenOver) {
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

TEST_F(TransferEngine, DiscardsAFewAtATimeAndBacksOffAfterAFailureUntilItGivesUp) {
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

TEST_F(TransferEngine, LetsAFileThatIsFinalizedMakeRoomAndNoLongerBePaused) {
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

TEST_F(TransferEngine, FailsFilesWhoseTokenExpiresWhileTheyWait) {
  concurrent(1);
  const auto group = groupOf(3, 1'000'060);
  engine.start();
  const auto order = starts().at(0);
  clock.pass(seconds(60));
  engine.onAttemptDone(order.attemptId, AttemptOutcome::done());
  EXPECT_EQ(engine.takeWork().failures.size(), 2U);
  EXPECT_EQ(stateOf(group), kGroupErrored);
}

TEST_F(TransferEngine, BeginsNothingWhileTheProgramHasNotTakenItsEvents) {
  groupOf(1);
  engine.start();
  for (std::size_t count = 0; count <= CEventQueue::kCongestion; ++count) {
    queue.push(FileState());
  }
  EXPECT_TRUE(starts().empty());
  events<FileState>();
  EXPECT_EQ(starts().size(), 1U);
}

TEST_F(TransferEngine, PutsEverythingBackWhenItStops) {
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

TEST_F(TransferEngine, HandlesFilesThatCannotBeginInBatches) {
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
