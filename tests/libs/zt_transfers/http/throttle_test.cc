#include "http/throttle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace zt_transfers::test {
namespace {

using std::chrono::milliseconds;

// Sends as much as it is let, as a transfer that never waits for its disk.
class CSender final : public CThrottle::IUser {
 public:
  explicit CSender(CThrottle& throttle) : throttle_(throttle) { throttle_.enter(); }
  ~CSender() { throttle_.leave(*this); }

  void onThrottleOpen() override { open = true; }
  void send(TimePoint now) {
    while (open) {
      const std::uint64_t granted = throttle_.take(*this, 16 * 1024, now);
      sent += granted;
      open = granted != 0;
    }
  }

  bool open = true;
  std::uint64_t sent = 0;

 private:
  CThrottle& throttle_;
};

TEST(Throttle, GivesEverySenderTheSameWhateverTheOrderInWhichTheyAsk) {
  for (const std::uint64_t rate : {20'000U, 2'000'000U}) {
    CThrottle throttle;
    TimePoint now{std::chrono::hours(1)};
    throttle.setRate(rate, now);
    std::array<CSender, 4> senders{CSender(throttle), CSender(throttle), CSender(throttle),
                                   CSender(throttle)};
    for (int tick = 0; tick < 20'000; ++tick, now += milliseconds(1)) {
      throttle.serve(now);
      for (CSender& sender : senders) {  // always the same one first
        sender.send(now);
      }
    }
    const auto [least, most] =
        std::minmax_element(senders.begin(), senders.end(),
                            [](const CSender& a, const CSender& b) { return a.sent < b.sent; });
    EXPECT_GT(least->sent, rate * 20 / 4 * 8 / 10) << rate;
    EXPECT_LT(most->sent, rate * 20 / 4 * 12 / 10) << rate;
  }
}

TEST(Throttle, LetsEveryoneGoWhenTheLimitIsLifted) {
  CThrottle throttle;
  TimePoint now{std::chrono::hours(1)};
  throttle.setRate(1000, now);
  CSender one(throttle);
  CSender two(throttle);
  one.send(now);
  two.send(now);
  ASSERT_TRUE(throttle.nextDue(now).has_value());
  throttle.setRate(0, now);
  throttle.serve(now);
  EXPECT_TRUE(one.open);
  EXPECT_TRUE(two.open);
  EXPECT_FALSE(throttle.nextDue(now).has_value());
}

TEST(Throttle, ForgetsASenderThatLeaves) {
  CThrottle throttle;
  const TimePoint now{std::chrono::hours(1)};
  throttle.setRate(1000, now);
  {
    CSender gone(throttle);
    gone.send(now);
  }
  throttle.serve(now + std::chrono::seconds(1));
  EXPECT_FALSE(throttle.nextDue(now).has_value());
}

}  // namespace
}  // namespace zt_transfers::test
