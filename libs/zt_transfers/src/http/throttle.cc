#include "http/throttle.h"

#include <algorithm>

namespace zt_transfers {

void CThrottle::setRate(std::uint64_t bytesPerSecond, TimePoint now) {
  bucket_.setRate(bytesPerSecond, now);
}

void CThrottle::leave(IUser& user) {
  --users_;
  std::erase(waiting_, &user);
  std::erase(called_, &user);
}

std::uint64_t CThrottle::take(IUser& user, std::uint64_t wanted, TimePoint now) {
  const bool called = std::erase(called_, &user) != 0;
  if (!bucket_.limited() || wanted == 0) {
    return wanted;
  }
  const bool mustQueue = !called && !waiting_.empty();
  const std::uint64_t granted = mustQueue ? 0 : bucket_.take(wanted, users_, now);
  if (granted == 0) {
    waiting_.push_back(&user);
  }
  return granted;
}

void CThrottle::serve(TimePoint now) {
  while (!waiting_.empty() && called_.size() < bucket_.grantsReady(now)) {
    IUser* user = waiting_.front();
    waiting_.pop_front();
    called_.push_back(user);
    user->onThrottleOpen();
  }
}

std::optional<TimePoint> CThrottle::nextDue(TimePoint now) {
  if (waiting_.empty()) {
    return std::nullopt;
  }
  return now + std::max<Duration>(bucket_.untilReady(now), std::chrono::milliseconds(1));
}

}  // namespace zt_transfers
