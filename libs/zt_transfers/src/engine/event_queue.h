#pragma once

#include <optional>
#include <variant>
#include <vector>

#include "base/clock.h"
#include "base/mutex.h"
#include "engine/transfer_group.h"

namespace zt_transfers {

using TransferEvent = std::variant<GroupSnapshot, FileState>;

// Events on their way from the engine to the program, in the order in which they happened.
// Thread: any.
class CEventQueue {
 public:
  // More than this many and the engine begins no further files until the program has caught up.
  static constexpr std::size_t kCongestion = 4096;

  void push(TransferEvent event);
  bool congested() const;

  // Takes all events. Without any it waits for one, for `poke`, or for `limit` if there is one.
  std::vector<TransferEvent> take(std::optional<Duration> limit);
  void wake();

 private:
  mutable CMutex mutex_;
  CConditionVariable arrived_;
  std::vector<TransferEvent> events_ GUARDED_BY(mutex_);
  bool woken_ GUARDED_BY(mutex_) = false;
};

}  // namespace zt_transfers
