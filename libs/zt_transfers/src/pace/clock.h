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
  virtual TimePoint now() const = 0;
  virtual std::int64_t secondsSince1970() const = 0;
};

class CSystemClock : public IClock {
 public:
  TimePoint now() const override { return std::chrono::steady_clock::now(); }
  std::int64_t secondsSince1970() const override {
    using std::chrono::duration_cast;
    using std::chrono::seconds;
    return duration_cast<seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
  }
};

}  // namespace zt_transfers
