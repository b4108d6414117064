#include "engine/event_queue.h"

#include <utility>

namespace zt_transfers {

void CEventQueue::push(TransferEvent event) {
  {
    const std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
    if (events_.size() > 1) {
      return;  // the first one has woken the reader
    }
  }
  arrived_.notify_one();
}

bool CEventQueue::congested() const {
  const std::lock_guard lock(mutex_);
  return events_.size() > kCongestion;
}

std::vector<TransferEvent> CEventQueue::take(std::optional<Duration> limit) {
  std::unique_lock lock(mutex_);
  const auto ready = [this] { return woken_ || !events_.empty(); };
  if (limit) {
    arrived_.wait_for(lock, *limit, ready);
  } else {
    arrived_.wait(lock, ready);
  }
  woken_ = false;
  return std::exchange(events_, {});
}

void CEventQueue::wake() {
  {
    const std::lock_guard lock(mutex_);
    woken_ = true;
  }
  arrived_.notify_one();
}

}  // namespace zt_transfers
