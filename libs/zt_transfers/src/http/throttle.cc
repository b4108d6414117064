#include "http/throttle.h"

#include <algorithm>

namespace zt_transfers {

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
  // Nobody overtakes those who wait, nor those who were called and are about to take.
  const bool mayTake =
      seat.place == Place::kCalled || (count(Place::kWaiting) == 0 && count(Place::kCalled) == 0);
  const std::uint64_t granted = mayTake ? bucket_.take(wanted, now) : 0;
  seat.place = granted == 0 ? Place::kWaiting : Place::kFree;
  return granted;
}

void CThrottle::serve(TimePoint now) {
  for (std::size_t looked = 0; looked < ring_.size(); ++looked) {
    if (count(Place::kCalled) >= bucket_.grantsReady(now)) {
      return;
    }
    turn_ %= ring_.size();
    Seat& seat = ring_[turn_];
    ++turn_;
    if (seat.place == Place::kWaiting) {
      seat.place = bucket_.limited() ? Place::kCalled : Place::kFree;
      seat.user->onThrottleOpen();
    }
  }
}

std::optional<TimePoint> CThrottle::nextDue(TimePoint now) {
  if (count(Place::kWaiting) == 0) {
    return std::nullopt;
  }
  return now + std::max<Duration>(bucket_.untilReady(now), std::chrono::milliseconds(1));
}

std::vector<CThrottle::Seat>::iterator CThrottle::seatOf(const IUser& user) {
  return std::find_if(ring_.begin(), ring_.end(),
                      [&user](const Seat& seat) { return seat.user == &user; });
}

std::size_t CThrottle::count(Place place) const {
  return static_cast<std::size_t>(std::count_if(
      ring_.begin(), ring_.end(), [place](const Seat& seat) { return seat.place == place; }));
}

}  // namespace zt_transfers
