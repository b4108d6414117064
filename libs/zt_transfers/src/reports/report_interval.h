#pragma once

#include <chrono>
#include <cstdint>
#include <set>

#include "base/mutex.h"
#include "http/http_loop.h"

namespace zt_transfers {

// How often the service is told how far transfers are. Only the uploads' configuration has it, but
// it holds for downloads as well, so there is one for the process, like the global configuration.
// Thread: any.
class CReportInterval {
 public:
  static CReportInterval& shared() {
    static CReportInterval pace;
    return pace;
  }

  // 0: the service is told nothing.
  void set(std::chrono::seconds interval);
  std::chrono::seconds interval() const;

  // The loops that are woken when it changes; each must leave before it ends.
  void join(CHttpLoop& loop);
  void leave(CHttpLoop& loop);

 private:
  CReportInterval() = default;

  mutable CMutex mutex_;
  std::chrono::seconds interval_ GUARDED_BY(mutex_){0};
  std::set<CHttpLoop*> loops_ GUARDED_BY(mutex_);
};

}  // namespace zt_transfers
