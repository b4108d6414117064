#pragma once

#include <chrono>
#include <cstdint>
#include <set>

#include "base/mutex.h"
#include "http/http_transport.h"

namespace zt_transfers {

// The interval of progress reports. It is part of the uploads' configuration, but holds for
// downloads as well, so the process has one. Thread: any.
class CReportInterval {
 public:
  static CReportInterval& shared() {
    static CReportInterval interval;
    return interval;
  }

  // 0: no reports.
  void set(std::chrono::seconds interval);
  std::chrono::seconds interval() const;

  // These loops are woken when it changes; each must leave before it ends.
  void join(IHttpTransport& loop);
  void leave(IHttpTransport& loop);

 private:
  CReportInterval() = default;

  mutable CMutex mutex_;
  std::chrono::seconds interval_ GUARDED_BY(mutex_){0};
  std::set<IHttpTransport*> loops_ GUARDED_BY(mutex_);
};

}  // namespace zt_transfers
