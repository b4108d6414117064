#include "engine/rate_meter.h"

#include <cmath>

namespace zt_transfers {
namespace {

constexpr double kTimeConstant = 3.0;  // seconds
constexpr double kShortest = 0.1;      // seconds; less gives no meaningful rate

double secondsBetween(TimePoint from, TimePoint to) {
  return to > from ? std::chrono::duration<double>(to - from).count() : 0.0;
}

}  // namespace

void CRateMeter::add(std::uint64_t bytes, TimePoint now) {
  if (begun_ == TimePoint{}) {
    begun_ = last_ = now;
  }
  weighted_ *= std::exp(-secondsBetween(last_, now) / kTimeConstant);
  weighted_ += static_cast<double>(bytes) / kTimeConstant;
  last_ = now;
}

std::uint64_t CRateMeter::bytesPerSecond(TimePoint now) const {
  const double running = secondsBetween(begun_, now);
  if (begun_ == TimePoint{} || running < kShortest) {
    return 0;
  }
  const double faded = weighted_ * std::exp(-secondsBetween(last_, now) / kTimeConstant);
  // The window is not filled yet at the beginning: only this share of it has been seen.
  const double seen = 1.0 - std::exp(-running / kTimeConstant);
  return static_cast<std::uint64_t>(std::llround(faded / seen));
}

std::uint64_t etaSeconds(std::uint64_t left, std::uint64_t bytesPerSecond) {
  if (bytesPerSecond == 0 || left == 0) {
    return 0;
  }
  return left / bytesPerSecond + (left % bytesPerSecond != 0 ? 1 : 0);
}

}  // namespace zt_transfers
