#include "http/token_bucket.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zt_transfers {
namespace {

constexpr double kCapacitySeconds = 0.1;
// One grant is worth a system call, and at high rates two milliseconds.
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

}  // namespace zt_transfers
