#pragma once

#include <optional>
#include <variant>
#include <vector>

#include "base/clock.h"
#include "base/mutex.h"
#include "engine/transfer_group.h"

namespace zt_transfers {

using TransferEvent = std::variant<GroupSnapshot, FileState>;

// Events for the program, in their order.
// Thread: any.
class CEventQueue {
 public:
  // With more events than this the engine begins no further files.
  static constexpr std::size_t kCongestion = 4096;

  void push(TransferEvent event);
  bool congested() const;

  // Takes all events. Waits for one, for `wake`, or for `limit` if there is one.
  std::vector<TransferEvent> take(std::optional<Duration> limit);
  void wake();

 private:
  mutable CMutex mutex_;
  CConditionVariable arrived_;
  std::vector<TransferEvent> events_ GUARDED_BY(mutex_);
  bool woken_ GUARDED_BY(mutex_) = false;
};

}  // namespace zt_transfers
