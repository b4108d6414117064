#include "base/clock.h"

#include <ctime>

namespace zt_transfers {

#if defined(CLOCK_BOOTTIME)
namespace {

Duration timeOf(clockid_t clock) {
  timespec time{};
  ::clock_gettime(clock, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

}  // namespace

TimePoint CSystemClock::now() const {
  return TimePoint(timeOf(CLOCK_BOOTTIME));
}

Duration CSystemClock::slept() const {
  return timeOf(CLOCK_BOOTTIME) - timeOf(CLOCK_MONOTONIC);
}
#else
// The steady clock itself goes on, and does not tell.
TimePoint CSystemClock::now() const {
  return std::chrono::steady_clock::now();
}

Duration CSystemClock::slept() const {
  return Duration::zero();
}
#endif

}  // namespace zt_transfers
