#include <gtest/gtest.h>

#include <set>

#include "engine_fixture.h"

namespace zt_transfers::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

AttemptOutcome away() {
  AttemptOutcome outcome = AttemptOutcome::retry("nobody answers", failure::kCannotConnect);
  outcome.scope = AttemptOutcome::Scope::kOrigin;
  outcome.retryBudget = AttemptOutcome::RetryBudget::kFree;
  return outcome;
}

AttemptOutcome broken() {
  AttemptOutcome outcome = AttemptOutcome::retry("500", failure::kServerTrouble);
  outcome.suspectsOrigin = true;
  return outcome;
}

class OriginRest : public CEngineFixture {
 protected:
  bool at(const StartOrder& order, const std::string& host) {
    return order.spec.url.find("//" + host + "/") != std::string::npos;
  }
  // All that can begin now.
  void endAll(const AttemptOutcome& outcome) {
    for (const StartOrder& order : starts()) {
      engine.onAttemptDone(order.attemptId, outcome);
    }
  }
  std::uint32_t completed(std::int32_t group) {
    return static_cast<std::uint32_t>(engine.group(group)->filesCompleted);
  }
};

TEST_F(OriginRest, KeepsEveryFileThroughALongOutageAndHardlyAsks) {
  concurrent(8, 0);
  const auto first = groupAt("a", 2000);
  const auto second = groupAt("a", 50);
  add(first, 5, "b");
  engine.start();
  const int asked = serve(minutes(10), [&](const StartOrder& order) {
    return at(order, "a") ? away() : AttemptOutcome::done();
  });
  EXPECT_LT(asked, 200);  // a rest lasts four to eight seconds
  EXPECT_EQ(completed(first), 5U);
  EXPECT_EQ(engine.group(second)->waitingFor, "cannot_connect");
  EXPECT_EQ(engine.report(first)->waitingFor, (Failure{"cannot_connect", "nobody answers"}));
  serve(minutes(1), [](const StartOrder&) { return AttemptOutcome::done(); });
  EXPECT_EQ(stateOf(first), kGroupCompleted);
  EXPECT_EQ(stateOf(second), kGroupCompleted);
}

TEST_F(OriginRest, EndsWithOneAttemptAfterWhichEverySuccessLetsOneMoreBegin) {
  concurrent(8);
  groupAt("a", 100);
  engine.start();
  endAll(away());
  EXPECT_TRUE(starts().empty());
  clock.pass(seconds(1));
  std::vector<StartOrder> running;
  for (const std::size_t expected : {1U, 2U, 4U, 8U, 8U}) {
    running = starts();
    EXPECT_EQ(running.size(), expected);
    for (const StartOrder& order : running) {
      engine.onAttemptDone(order.attemptId, AttemptOutcome::done());
    }
  }
}

TEST_F(OriginRest, IsOverOnceAnAttemptHasBeenMovingBytes) {
  concurrent(8);
  const auto group = groupAt("a", 100);
  engine.start();
  endAll(away());
  clock.pass(seconds(1));
  const StartOrder probe = starts().at(0);
  EXPECT_TRUE(starts().empty());
  clock.pass(seconds(6));
  probe.progress->bytes = 10;
  engine.collectProgress();
  EXPECT_EQ(starts().size(), 1U);
  EXPECT_EQ(engine.group(group)->waitingFor, "");
}

TEST_F(OriginRest, IsProbedAgainWhenAProbeHangs) {
  concurrent(8);
  const auto group = groupAt("a", 3);
  engine.start();
  endAll(away());
  clock.pass(seconds(1));
  ASSERT_EQ(starts().size(), 1U);
  const TransferWork waiting = engine.takeWork();
  ASSERT_TRUE(waiting.starts.empty());
  ASSERT_TRUE(waiting.nextDue);
  serve(minutes(2), [](const StartOrder&) { return AttemptOutcome::done(); });
  EXPECT_EQ(completed(group), 2U);
}

TEST(CircuitBreaker, BlamesAFileForThreeFailuresAmongSuccessesButNotForThoseOfThreeOutages) {
  constexpr FileRef kFile{1, 1};
  TimePoint now{};
  for (const bool outages : {false, true}) {
    CCircuitBreaker breaker;
    for (int failure = 0; failure < 3; ++failure) {
      EXPECT_FALSE(breaker.failsAlone(kFile, now));
      breaker.noteFailure(kFile, now);
      if (outages) {
        breaker.open({"server_trouble", "500"}, now);
      }
      breaker.succeed(breaker.begin(now), 1);
      now += minutes(1);
    }
    EXPECT_EQ(breaker.failsAlone(kFile, now), !outages);
  }
}

TEST_F(OriginRest, BeginsWhenDifferentFilesFailInARowWhichThenUsesUpNothing) {
  concurrent(4, 1);
  const auto group = groupAt("a", 20);
  engine.start();
  bool down = true;
  const auto answer = [&](const StartOrder&) { return down ? broken() : AttemptOutcome::done(); };
  EXPECT_LT(serve(minutes(10), answer), 200);
  EXPECT_EQ(engine.group(group)->waitingFor, "server_trouble");
  down = false;
  serve(minutes(1), answer);
  EXPECT_EQ(stateOf(group), kGroupCompleted);
}

TEST_F(OriginRest, DoesNotExcuseAFileThatFailsWhileOthersSucceed) {
  concurrent(2, 3);
  const auto group = groupAt("a", 500);
  engine.start();
  std::map<std::string, int> tries;
  serve(minutes(5), [&](const StartOrder& order) {
    clock.pass(milliseconds(100));
    ++tries[order.spec.fileId];
    return order.file.index % 100 == 50 ? broken() : AttemptOutcome::done();
  });
  EXPECT_EQ(completed(group), 495U);
  EXPECT_EQ(stateOf(group), kGroupErrored);
  EXPECT_LE(tries["1-50"], 8);
}

TEST_F(OriginRest, TakesAtLeastTheTimeTheServerAsksForUnlessTheGroupIsResumed) {
  concurrent(4);
  const auto group = groupAt("a", 5);
  groupAt("a", 5);
  engine.start();
  AttemptOutcome busy = away();
  busy.retryAfter = seconds(20);
  endAll(busy);
  clock.pass(milliseconds(19'900));
  EXPECT_TRUE(starts().empty());
  clock.pass(milliseconds(4'100));
  ASSERT_EQ(starts().size(), 1U);
  engine.pauseGroup(group);  // ends the probe without a result
  const auto next = starts();
  ASSERT_EQ(next.size(), 1U);
  engine.onAttemptDone(next[0].attemptId, busy);
  EXPECT_TRUE(starts().empty());
  engine.resumeGroup(group);
  EXPECT_FALSE(engine.report(group)->waitingFor);
  EXPECT_EQ(starts().size(), 1U);
}

// The files of a resting origin wait aside, and must not be lost there.
TEST_F(OriginRest, LosesNoFileWhateverHappensToItMeanwhile) {
  concurrent(4);
  const auto group = groupAt("a", 40);
  const auto cancelled = groupAt("a", 40);
  engine.start();
  bool down = true;
  std::multiset<std::string> served;
  const auto answer = [&](const StartOrder& order) {
    if (down && at(order, "a")) {
      return away();
    }
    served.insert(order.spec.fileId);
    return AttemptOutcome::done();
  };
  serve(minutes(1), answer);
  engine.pauseGroup(group);
  serve(minutes(1), answer);
  engine.resumeGroup(group);
  engine.dequeueFiles(group, {"1-7", "1-8"});
  FileSpec again;
  again.fileId = "1-8";
  again.url = "http://a/again";
  FileSpec renewed;
  renewed.fileId = "1-30";
  renewed.url = "http://b/renewed";
  engine.queueFiles(group, {again, renewed});
  engine.cancelGroup(cancelled);
  serve(minutes(1), answer);
  EXPECT_EQ(served, (std::multiset<std::string>{"1-30"}));
  engine.stop();
  engine.start();
  serve(minutes(1), answer);
  down = false;
  serve(minutes(1), answer);
  EXPECT_EQ(served.size(), 39U);
  EXPECT_EQ(std::set<std::string>(served.begin(), served.end()).size(), 39U);
  EXPECT_EQ(stateOf(group), kGroupCompleted);
}

TEST_F(OriginRest, LeavesGroupsAloneWhoseFolderIsInTrouble) {
  concurrent(8);
  const auto group = groupAt("a", 10);
  engine.start();
  AttemptOutcome full = AttemptOutcome::retry("full", failure::kDiskFull);
  full.scope = AttemptOutcome::Scope::kFolder;
  full.retryBudget = AttemptOutcome::RetryBudget::kFree;
  endAll(full);
  const auto other = groupAt("a", 2);
  const auto others = starts();
  ASSERT_EQ(others.size(), 2U);
  EXPECT_EQ(others[0].file.groupId, other);
  EXPECT_EQ(engine.group(group)->waitingFor, "disk_full");
  clock.pass(seconds(1));
  const auto probe = starts();
  ASSERT_EQ(probe.size(), 1U);
  engine.onAttemptDone(probe[0].attemptId, AttemptOutcome::done());
  EXPECT_EQ(starts().size(), 6U);
}

}  // namespace
}  // namespace zt_transfers::test
