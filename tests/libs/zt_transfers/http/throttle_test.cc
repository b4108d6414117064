#include "http/throttle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <utility>

namespace zt_transfers::test {
namespace {

using std::chrono::milliseconds;

// Sends as much as it is let, as a transfer that never waits for its disk.
class CSender final : public CThrottle::IUser {
 public:
  explicit CSender(CThrottle& throttle) : throttle_(throttle) { throttle_.enter(*this); }
  ~CSender() { throttle_.leave(*this); }

  void onThrottleOpen() override { open = true; }
  void send(TimePoint now) {
    while (open) {
      const std::uint64_t granted = throttle_.take(*this, 256 * 1024, now);
      sent += granted;
      open = granted != 0;
    }
  }

  bool open = true;
  std::uint64_t sent = 0;

 private:
  CThrottle& throttle_;
};

// Lets eight senders ask, always the same one first, every `tick` for a minute.
std::pair<std::uint64_t, std::uint64_t> leastAndMostSent(std::uint64_t rate, milliseconds tick) {
  CThrottle throttle;
  TimePoint now{std::chrono::hours(1)};
  const TimePoint end = now + std::chrono::minutes(1);
  throttle.setRate(rate, now);
  std::deque<CSender> senders;
  for (int count = 0; count < 8; ++count) {
    senders.emplace_back(throttle);
  }
  for (; now < end; now += tick) {
    throttle.serve(now);
    for (CSender& sender : senders) {
      sender.send(now);
    }
  }
  const auto [least, most] =
      std::minmax_element(senders.begin(), senders.end(),
                          [](const CSender& a, const CSender& b) { return a.sent < b.sent; });
  return {least->sent, most->sent};
}

TEST(Throttle, GivesEverySenderTheSameWhateverTheOrderInWhichTheyAsk) {
  const std::pair<std::uint64_t, int> cases[] = {
      {20'000, 1}, {20'000, 50}, {2'000'000, 1}, {2'000'000, 50}, {50'000'000, 1}};
  for (const auto& [rate, tick] : cases) {
    const auto [least, most] = leastAndMostSent(rate, milliseconds(tick));
    const std::uint64_t fair = rate * 60 / 8;
    EXPECT_GT(least, fair * 8 / 10) << rate << " every " << tick << " ms";
    EXPECT_LT(most, fair * 12 / 10) << rate << " every " << tick << " ms";
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
