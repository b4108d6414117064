#include "http/throttle.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zt_transfers {
namespace {

constexpr double kCapacitySeconds = 0.1;
// A grant is large enough for a system call, and at high rates lasts two milliseconds.
constexpr double kMinGrant = 16.0 * 1024;
constexpr double kGrantSeconds = 0.002;

}  // namespace

void CTokenBucket::setRate(std::uint64_t bytesPerSecond, TimePoint now) {
  refill(now);
  rate_ = bytesPerSecond;
  available_ = std::min(available_, capacity());
  refilled_ = now;
}

std::uint64_t CTokenBucket::take(std::uint64_t wanted, TimePoint now) {
  if (!limited()) {
    return wanted;
  }
  refill(now);
  const double granted = std::min(static_cast<double>(wanted), grant());
  if (available_ < granted) {
    return 0;
  }
  available_ -= std::floor(granted);
  return static_cast<std::uint64_t>(granted);
}

std::size_t CTokenBucket::grantsReady(TimePoint now) {
  if (!limited()) {
    return std::numeric_limits<std::size_t>::max();
  }
  refill(now);
  return static_cast<std::size_t>(available_ / grant());
}

Duration CTokenBucket::untilReady(TimePoint now) {
  if (!limited()) {
    return Duration::zero();
  }
  refill(now);
  const double missing = grant() - available_;
  if (missing <= 0) {
    return Duration::zero();
  }
  const std::chrono::duration<double> wait(missing / static_cast<double>(rate_));
  return std::chrono::duration_cast<Duration>(wait) + std::chrono::milliseconds(1);
}

void CTokenBucket::refill(TimePoint now) {
  if (now > refilled_) {
    const std::chrono::duration<double> passed = now - refilled_;
    available_ = std::min(capacity(), available_ + passed.count() * static_cast<double>(rate_));
    refilled_ = now;
  }
}

double CTokenBucket::capacity() const {
  return std::max(1.0, static_cast<double>(rate_) * kCapacitySeconds);
}

double CTokenBucket::grant() const {
  return std::min(capacity(), std::max(kMinGrant, static_cast<double>(rate_) * kGrantSeconds));
}

void CThrottle::setRate(std::uint64_t bytesPerSecond, TimePoint now) {
  bucket_.setRate(bytesPerSecond, now);
}

void CThrottle::leave(IUser& user) {
  const auto seat = seatOf(user);
  if (seat == ring_.end()) {
    return;
  }
  if (static_cast<std::size_t>(seat - ring_.begin()) < turn_) {
    --turn_;
  }
  ring_.erase(seat);
}

std::uint64_t CThrottle::take(IUser& user, std::uint64_t wanted, TimePoint now) {
  if (!bucket_.limited() || wanted == 0) {
    return wanted;
  }
  Seat& seat = *seatOf(user);
  // Waiting users, and called ones that have not taken bytes yet, are served first.
  const bool mayTake =
      seat.state == State::kCalled || (count(State::kWaiting) == 0 && count(State::kCalled) == 0);
  const std::uint64_t granted = mayTake ? bucket_.take(wanted, now) : 0;
  seat.state = granted == 0 ? State::kWaiting : State::kFree;
  return granted;
}

void CThrottle::serve(TimePoint now) {
  for (std::size_t checked = 0; checked < ring_.size(); ++checked) {
    if (count(State::kCalled) >= bucket_.grantsReady(now)) {
      return;
    }
    turn_ %= ring_.size();
    Seat& seat = ring_[turn_];
    ++turn_;
    if (seat.state == State::kWaiting) {
      seat.state = bucket_.limited() ? State::kCalled : State::kFree;
      seat.user->onThrottleOpen();
    }
  }
}

std::optional<TimePoint> CThrottle::nextDue(TimePoint now) {
  if (count(State::kWaiting) == 0) {
    return std::nullopt;
  }
  return now + std::max<Duration>(bucket_.untilReady(now), std::chrono::milliseconds(1));
}

std::vector<CThrottle::Seat>::iterator CThrottle::seatOf(const IUser& user) {
  return std::find_if(ring_.begin(), ring_.end(),
                      [&user](const Seat& seat) { return seat.user == &user; });
}

std::size_t CThrottle::count(State state) const {
  return static_cast<std::size_t>(std::count_if(
      ring_.begin(), ring_.end(), [state](const Seat& seat) { return seat.state == state; }));
}

}  // namespace zt_transfers
