#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "http/token_bucket.h"

namespace zt_transfers {

// Shares one limit of bytes a second among bodies that are being sent: they sit in a ring, and
// who gets nothing is called when its turn comes. So all get the same, whatever the order in
// which they ask.
//
// Thread: the network thread.
class CThrottle {
 public:
  class IUser {
   public:
    // May take now.
    virtual void onThrottleOpen() = 0;

   protected:
    ~IUser() = default;
  };

  void setRate(std::uint64_t bytesPerSecond, TimePoint now);
  bool limited() const { return bucket_.limited(); }

  // Between the two the user may take and can be called.
  void enter(IUser& user) { ring_.push_back({&user, Place::kFree}); }
  void leave(IUser& user);

  // How much of `wanted` may go now; with 0 the user is called later.
  std::uint64_t take(IUser& user, std::uint64_t wanted, TimePoint now);

  // Calls those whose turn it is, as many as there is something for.
  void serve(TimePoint now);
  // When to serve next, if somebody waits.
  std::optional<TimePoint> nextDue(TimePoint now);

 private:
  enum class Place { kFree, kWaiting, kCalled };  // called: and has not taken yet
  struct Seat {
    IUser* user;
    Place place;
  };

  std::vector<Seat>::iterator seatOf(const IUser& user);
  std::size_t count(Place place) const;

  CTokenBucket bucket_;
  std::vector<Seat> ring_;  // as many as transfers at once are allowed
  std::size_t turn_ = 0;    // where in the ring to look next
};

}  // namespace zt_transfers
