#pragma once

#include <deque>
#include <optional>
#include <vector>

#include "pace/token_bucket.h"

namespace zt_transfers {

// Shares one limit of bytes a second among bodies that are being sent: whoever gets nothing
// stands in a queue, and its front is called as soon as there is something again. So all get
// the same, whatever the order in which they ask.
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

  void enter() { ++users_; }  // a body is going to be sent
  void leave(IUser& user);    // it is not any more

  // How much of `wanted` may go now; with 0 the user is called later.
  std::uint64_t take(IUser& user, std::uint64_t wanted, TimePoint now);

  // Calls the first in the queue, as many as there is something for.
  void serve(TimePoint now);
  // When to serve next, if somebody waits.
  std::optional<TimePoint> nextDue(TimePoint now);

 private:
  CTokenBucket bucket_;
  std::size_t users_ = 0;
  std::deque<IUser*> waiting_;
  std::vector<IUser*> called_;  // and have not taken yet
};

}  // namespace zt_transfers
