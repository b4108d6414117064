#include "services/contacts/wait_budget.h"

#include <algorithm>

namespace zantrio {

CWaitBudget::CWaitBudget(std::chrono::milliseconds total) : left_(total) {}

void CWaitBudget::end() {
  {
    const std::lock_guard lock(mutex_);
    hasEnded_ = true;
  }
  ended_.notify_all();
}

void CWaitBudget::wait() {
  std::unique_lock lock(mutex_);
  const Clock::time_point begin = Clock::now();
  ended_.wait_until(lock, begin + left_, [this] { return hasEnded_; });
  left_ = std::max(Clock::duration::zero(), left_ - (Clock::now() - begin));
}

}  // namespace zantrio
