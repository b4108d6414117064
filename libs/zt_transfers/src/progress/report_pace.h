#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace zt_transfers {

// How often the service is told how far transfers are. Only the uploads' configuration has it, but
// it holds for downloads as well, so there is one for the process, like the global configuration.
// Thread: any.
class CReportPace {
 public:
  static CReportPace& shared() {
    static CReportPace pace;
    return pace;
  }

  // 0: the service is told nothing.
  void set(std::chrono::seconds interval) { seconds_ = interval.count(); }
  std::chrono::seconds interval() const { return std::chrono::seconds(seconds_); }

 private:
  CReportPace() = default;

  std::atomic<std::int64_t> seconds_{0};
};

}  // namespace zt_transfers
