#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <utility>

#include "base/clock.h"

namespace zt_transfers::test {

// Virtual time: events run one after the other, and the clock jumps from one to the next. Equal
// seeds give equal runs. Thread: one.
class CWorld final : public IClock {
 public:
  explicit CWorld(std::uint64_t seed) : random_(seed) {}

  void after(Duration delay, std::function<void()> event) {
    events_.emplace(std::pair(now_ + delay, ++last_), std::move(event));
  }
  // Runs the next event, unless it comes later than `limit`; the clock then stands at `limit`.
  bool step(TimePoint limit);

  TimePoint now() const override { return now_; }
  std::int64_t secondsSince1970() const override {
    return std::chrono::duration_cast<std::chrono::seconds>(now_.time_since_epoch()).count() +
           wallOffset_;
  }
  // The wall clock of the machine; servers have the right time.
  void setWallClock(std::int64_t error) { wallOffset_ = kEpoch + error; }
  std::int64_t trueSeconds() const {
    return std::chrono::duration_cast<std::chrono::seconds>(now_.time_since_epoch()).count() +
           kEpoch;
  }

  std::uint64_t random(std::uint64_t below) { return random_() % below; }
  bool chance(unsigned percent) { return random(100) < percent; }
  Duration randomDelay(std::chrono::milliseconds limit) {
    return std::chrono::microseconds(random(static_cast<std::uint64_t>(limit.count()) * 1000 + 1));
  }

  // Events that have run without any time passing; a loop that spins never ends.
  std::uint64_t spins() const { return spins_; }

 private:
  static constexpr std::int64_t kEpoch = 1'700'000'000;

  TimePoint now_{std::chrono::hours(1)};
  std::int64_t wallOffset_ = kEpoch;
  std::uint64_t last_ = 0;
  std::uint64_t spins_ = 0;
  std::map<std::pair<TimePoint, std::uint64_t>, std::function<void()>> events_;
  std::mt19937_64 random_;
};

}  // namespace zt_transfers::test
