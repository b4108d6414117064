#pragma once

#include <cstdint>

#include "base/clock.h"

namespace zt_transfers {

// An exponentially smoothed rate with a time constant of three seconds, without a bias in its first
// seconds.
//
// Thread: one.
class CRateMeter {
 public:
  void add(std::uint64_t bytes, TimePoint now);
  std::uint64_t bytesPerSecond(TimePoint now) const;
  void reset() { *this = CRateMeter(); }

 private:
  TimePoint begun_{};
  TimePoint last_{};
  double weighted_ = 0;  // bytes a second, as of last_
};

// Seconds to transfer `left` bytes, rounded up; 0 when the rate is 0.
std::uint64_t etaSeconds(std::uint64_t left, std::uint64_t bytesPerSecond);

}  // namespace zt_transfers
