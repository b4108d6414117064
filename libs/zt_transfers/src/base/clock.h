#pragma once

#include <chrono>
#include <cstdint>

namespace zt_transfers {

using TimePoint = std::chrono::steady_clock::time_point;
using Duration = std::chrono::steady_clock::duration;

// Where the library takes its time from; tests give their own. Thread: any.
class IClock {
 public:
  virtual ~IClock() = default;
  // Goes on while the machine sleeps, so that what was due meanwhile is due at once.
  virtual TimePoint now() const = 0;
  // How long the machine has slept until now, since it was started; to a second or so.
  virtual Duration slept() const { return Duration::zero(); }
  virtual std::int64_t secondsSince1970() const = 0;
};

class CSystemClock : public IClock {
 public:
  TimePoint now() const override;
  Duration slept() const override;
  std::int64_t secondsSince1970() const override {
    using std::chrono::duration_cast;
    using std::chrono::seconds;
    return duration_cast<seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
  }
};

}  // namespace zt_transfers
