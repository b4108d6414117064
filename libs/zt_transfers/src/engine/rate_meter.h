#pragma once

#include <cstdint>

#include "base/clock.h"

namespace zt_transfers {

// A smoothed rate of bytes a second: recent traffic weighs most, older fades with a time
// constant of three seconds. Correct from the first moments on, not only once it has run in.
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

// Seconds until `left` bytes are through, rounded up; 0 when the rate says nothing.
std::uint64_t etaSeconds(std::uint64_t left, std::uint64_t bytesPerSecond);

}  // namespace zt_transfers
