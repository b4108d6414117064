#include "engine/event_queue.h"

#include <utility>

namespace zt_transfers {

void CEventQueue::push(TransferEvent event) {
  {
    const CMutexLock lock(mutex_);
    events_.push_back(std::move(event));
    if (events_.size() > 1) {
      return;  // the first one has woken the reader
    }
  }
  arrived_.notifyOne();
}

bool CEventQueue::congested() const {
  const CMutexLock lock(mutex_);
  return events_.size() > kCongestion;
}

std::vector<TransferEvent> CEventQueue::take(std::optional<Duration> limit) {
  CMutexLock lock(mutex_);
  const auto ready = [this]() REQUIRES(mutex_) { return woken_ || !events_.empty(); };
  if (limit) {
    arrived_.waitFor(mutex_, *limit, ready);
  } else {
    arrived_.wait(mutex_, ready);
  }
  woken_ = false;
  return std::exchange(events_, {});
}

void CEventQueue::wake() {
  {
    const CMutexLock lock(mutex_);
    woken_ = true;
  }
  arrived_.notifyOne();
}

}  // namespace zt_transfers
