#include "services/contacts/patience.h"

#include <algorithm>

namespace zantrio {

CPatience::CPatience(std::chrono::milliseconds limit) : left_(limit) {}

void CPatience::end() {
  {
    const std::lock_guard lock(mutex_);
    isOver_ = true;
  }
  ended_.notify_all();
}

void CPatience::wait() {
  std::unique_lock lock(mutex_);
  const Clock::time_point begin = Clock::now();
  ended_.wait_until(lock, begin + left_, [this] { return isOver_; });
  left_ = std::max(Clock::duration::zero(), left_ - (Clock::now() - begin));
}

}  // namespace zantrio
