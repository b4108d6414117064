#include <gtest/gtest.h>

#include "engine/rate_meter.h"
#include "engine/retry_policy.h"
#include "http/throttle.h"

namespace zt_transfers::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

const TimePoint kBegin = TimePoint(std::chrono::hours(5));

TEST(Backoff, DoublesUpToItsCap) {
  const BackoffPolicy policy{.base = seconds(1), .cap = seconds(10)};
  EXPECT_EQ(backoffDelay(policy, 1, 0.0, {}), seconds(1));
  EXPECT_EQ(backoffDelay(policy, 2, 0.0, {}), seconds(2));
  EXPECT_EQ(backoffDelay(policy, 4, 0.0, {}), seconds(8));
  EXPECT_EQ(backoffDelay(policy, 5, 0.0, {}), seconds(10));
  EXPECT_EQ(backoffDelay(policy, 4'000'000'000U, 0.0, {}), seconds(10));
}

TEST(Backoff, TakesOffUpToAHalfByJitter) {
  const BackoffPolicy policy{.base = seconds(1), .cap = seconds(10)};
  EXPECT_EQ(backoffDelay(policy, 2, 0.5, {}), milliseconds(1500));
  EXPECT_EQ(backoffDelay(policy, 2, 1.0, {}), seconds(1));
}

TEST(Backoff, GivesTheServerTheTimeItAsksForWithinReason) {
  const BackoffPolicy policy{.base = seconds(1), .maxRetryAfter = seconds(100)};
  EXPECT_EQ(backoffDelay(policy, 1, 0.0, seconds(30)), seconds(30));
  EXPECT_EQ(backoffDelay(policy, 1, 1.0, seconds(30)), seconds(36));
  EXPECT_EQ(backoffDelay(policy, 3, 0.0, seconds(0)), seconds(4));
  EXPECT_EQ(backoffDelay(policy, 1, 0.0, std::chrono::hours(24 * 300)), seconds(100));
}

TEST(TokenBucket, LetsEverythingThroughWithoutALimit) {
  CTokenBucket bucket;
  EXPECT_EQ(bucket.take(1'000'000'000, kBegin), 1'000'000'000U);
  EXPECT_EQ(bucket.untilReady(kBegin), Duration::zero());
}

std::uint64_t takenWithin(CTokenBucket& bucket, TimePoint from, Duration time) {
  std::uint64_t taken = 0;
  for (TimePoint now = from; now < from + time; now += milliseconds(1)) {
    while (const std::uint64_t granted = bucket.take(64 * 1024, now)) {
      taken += granted;
    }
  }
  return taken;
}

TEST(TokenBucket, KeepsToItsRateOverTime) {
  for (const std::uint64_t rate : {100U, 10'000U, 1'000'000U, 100'000'000U}) {
    CTokenBucket bucket;
    bucket.setRate(rate, kBegin);
    const std::uint64_t taken = takenWithin(bucket, kBegin, seconds(10));
    EXPECT_LE(taken, rate * 10 + rate / 10 + 1) << rate;
    EXPECT_GE(taken, rate * 10 - rate / 5) << rate;
  }
}

TEST(TokenBucket, FollowsAChangeOfItsRate) {
  CTokenBucket bucket;
  bucket.setRate(1'000'000, kBegin);
  takenWithin(bucket, kBegin, seconds(1));
  bucket.setRate(10'000, kBegin + seconds(1));
  EXPECT_LE(takenWithin(bucket, kBegin + seconds(1), seconds(1)), 11'001U);
}

TEST(TokenBucket, SavesNothingUpWhileNobodySends) {
  CTokenBucket bucket;
  bucket.setRate(1'000'000, kBegin);
  std::uint64_t burst = 0;
  while (const std::uint64_t granted = bucket.take(64 * 1024, kBegin + std::chrono::hours(1))) {
    burst += granted;
  }
  EXPECT_LE(burst, 100'000U);
}

TEST(RateMeter, TellsASteadyRateFromTheFirstSecondOn) {
  CRateMeter meter;
  TimePoint now = kBegin;
  for (int tick = 0; tick < 100; ++tick, now += milliseconds(100)) {
    meter.add(10'000, now);
    if (tick >= 10) {
      EXPECT_NEAR(static_cast<double>(meter.bytesPerSecond(now)), 100'000, 20'000) << tick;
    }
  }
}

TEST(RateMeter, FadesWhenNothingMoves) {
  CRateMeter meter;
  meter.add(1'000'000, kBegin);
  meter.add(1'000'000, kBegin + seconds(1));
  const auto busy = meter.bytesPerSecond(kBegin + seconds(1));
  EXPECT_LT(meter.bytesPerSecond(kBegin + seconds(10)), busy / 10);
  EXPECT_EQ(meter.bytesPerSecond(kBegin + std::chrono::hours(1)), 0U);
}

TEST(RateMeter, SaysNothingBeforeItCanKnow) {
  CRateMeter meter;
  EXPECT_EQ(meter.bytesPerSecond(kBegin), 0U);
  meter.add(1000, kBegin);
  EXPECT_EQ(meter.bytesPerSecond(kBegin), 0U);
}

TEST(EtaSeconds, RoundsUpAndIsZeroWhenUnknown) {
  EXPECT_EQ(etaSeconds(100, 100), 1U);
  EXPECT_EQ(etaSeconds(101, 100), 2U);
  EXPECT_EQ(etaSeconds(100, 0), 0U);
  EXPECT_EQ(etaSeconds(0, 100), 0U);
}

}  // namespace
}  // namespace zt_transfers::test
