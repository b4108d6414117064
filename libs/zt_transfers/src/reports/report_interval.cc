#include "reports/report_interval.h"

namespace zt_transfers {

void CReportInterval::set(std::chrono::seconds interval) {
  const CMutexLock lock(mutex_);
  if (interval_ == interval) {
    return;
  }
  interval_ = interval;
  for (IHttpTransport* loop : loops_) {
    loop->wake();  // which calls nobody
  }
}

std::chrono::seconds CReportInterval::interval() const {
  const CMutexLock lock(mutex_);
  return interval_;
}

void CReportInterval::join(IHttpTransport& loop) {
  const CMutexLock lock(mutex_);
  loops_.insert(&loop);
}

void CReportInterval::leave(IHttpTransport& loop) {
  const CMutexLock lock(mutex_);
  loops_.erase(&loop);
}

}  // namespace zt_transfers
