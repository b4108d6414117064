#include "pace/token_bucket.h"

#include <algorithm>
#include <limits>

namespace zt_transfers {
namespace {

constexpr double kCapacitySeconds = 0.1;
constexpr double kLargestLeastGrant = 16.0 * 1024;

}  // namespace

void CTokenBucket::setRate(std::uint64_t bytesPerSecond, TimePoint now) {
  refill(now);
  rate_ = bytesPerSecond;
  available_ = std::min(available_, capacity());
  refilled_ = now;
}

std::uint64_t CTokenBucket::take(std::uint64_t wanted, std::uint64_t sharers, TimePoint now) {
  if (!limited()) {
    return wanted;
  }
  refill(now);
  if (available_ < std::min(leastGrant(), static_cast<double>(wanted))) {
    return 0;
  }
  const double share = available_ / static_cast<double>(std::max<std::uint64_t>(sharers, 1));
  const auto granted = std::min(wanted, static_cast<std::uint64_t>(std::max(share, leastGrant())));
  available_ -= static_cast<double>(granted);
  return granted;
}

std::size_t CTokenBucket::grantsReady(TimePoint now) {
  if (!limited()) {
    return std::numeric_limits<std::size_t>::max();
  }
  refill(now);
  return static_cast<std::size_t>(available_ / leastGrant());
}

Duration CTokenBucket::untilReady(TimePoint now) {
  if (!limited()) {
    return Duration::zero();
  }
  refill(now);
  const double missing = leastGrant() - available_;
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

double CTokenBucket::leastGrant() const {
  return std::min(capacity(), kLargestLeastGrant);
}

}  // namespace zt_transfers
