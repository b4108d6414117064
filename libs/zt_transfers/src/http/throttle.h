#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/clock.h"

namespace zt_transfers {

// Limits a stream of bytes to a rate. It holds the bytes of a tenth of a second at most, so that a
// pause is not followed by a burst and a new rate takes effect almost at once.
//
// Thread: one.
class CTokenBucket {
 public:
  // Bytes a second; 0: no limit.
  void setRate(std::uint64_t bytesPerSecond, TimePoint now);
  bool limited() const { return rate_ != 0; }

  // Returns how many of `wanted` bytes may be sent now, one grant at most; 0: none.
  std::uint64_t take(std::uint64_t wanted, TimePoint now);

  // The number of grants that are available now.
  std::size_t grantsReady(TimePoint now);
  // The time until a grant is available.
  Duration untilReady(TimePoint now);

 private:
  void refill(TimePoint now);
  double capacity() const;
  double grant() const;

  std::uint64_t rate_ = 0;
  double available_ = 0;
  TimePoint refilled_{};
};

// Shares one limit of bytes a second among transfers. Its users form a ring, and a user that gets
// nothing is called when its turn comes. So all get the same, in whatever order they ask.
//
// Thread: the network thread.
class CThrottle {
 public:
  class IUser {
   public:
    // The user may take bytes now.
    virtual void onThrottleOpen() = 0;

   protected:
    ~IUser() = default;
  };

  void setRate(std::uint64_t bytesPerSecond, TimePoint now);
  bool limited() const { return bucket_.limited(); }

  // Between enter and leave the user may take bytes and is called.
  void enter(IUser& user) { ring_.push_back({&user, State::kFree}); }
  void leave(IUser& user);

  // Returns how many of `wanted` bytes may be transferred now; after 0 the user is called later.
  std::uint64_t take(IUser& user, std::uint64_t wanted, TimePoint now);

  // Calls the users whose turn it is, as many as there are grants.
  void serve(TimePoint now);
  // When to serve next, if a user waits.
  std::optional<TimePoint> nextDue(TimePoint now);

 private:
  enum class State { kFree, kWaiting, kCalled };  // kCalled: it has not taken bytes yet
  struct Seat {
    IUser* user;
    State state;
  };

  std::vector<Seat>::iterator seatOf(const IUser& user);
  std::size_t count(State state) const;

  CTokenBucket bucket_;
  std::vector<Seat> ring_;  // not more than concurrent transfers
  std::size_t turn_ = 0;    // where in the ring to continue
};

}  // namespace zt_transfers
