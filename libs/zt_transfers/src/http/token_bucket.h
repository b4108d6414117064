#pragma once

#include <cstddef>
#include <cstdint>

#include "base/clock.h"

namespace zt_transfers {

// Limits a stream of bytes to a rate. Holds a tenth of a second's worth at most, so that a pause
// is not followed by a burst and a change of the rate holds almost at once.
//
// Thread: one.
class CTokenBucket {
 public:
  // Bytes a second; 0: no limit.
  void setRate(std::uint64_t bytesPerSecond, TimePoint now);
  bool limited() const { return rate_ != 0; }

  // How many of `wanted` bytes may go now, one grant at most; 0: none.
  std::uint64_t take(std::uint64_t wanted, TimePoint now);

  // How many grants there are now.
  std::size_t grantsReady(TimePoint now);
  // How long until there is a grant.
  Duration untilReady(TimePoint now);

 private:
  void refill(TimePoint now);
  double capacity() const;
  double grant() const;

  std::uint64_t rate_ = 0;
  double available_ = 0;
  TimePoint refilled_{};
};

}  // namespace zt_transfers
