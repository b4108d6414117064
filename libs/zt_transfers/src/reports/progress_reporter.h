#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "base/log.h"
#include "base/mutex.h"
#include "engine/transfer_engine.h"
#include "http/http_loop.h"
#include "reports/report_interval.h"
#include "reports/report_request.h"

namespace zt_transfers {

// Tells the service how far groups are and what keeps them: every so often (CReportInterval) while
// a group transfers, and at once when its state changes. Of each group one report is under way at
// a time, and the next one tells how things are then. A report that fails is dropped.
//
// It takes a connection of the loop, but neither a transfer's place nor a share of the limit.
// Thread: the loop's, but for `note` and `setProxy`.
class CProgressReporter {
 public:
  // No answer within this: the report is given up.
  static constexpr std::chrono::seconds kTimeLimit{10};
  // Reports under way, of all groups.
  static constexpr std::size_t kMaxConcurrent = 4;

  // All must outlive it. `look` tells how a group is now; nothing when it is gone.
  struct Parts {
    CHttpLoop& loop;
    ILog& log;
    std::function<std::optional<CTransferEngine::GroupReport>(std::int32_t)> look;
  };

  // `direction`: "upload" or "download".
  CProgressReporter(std::string direction, Parts parts);
  ~CProgressReporter() { CReportInterval::shared().leave(parts_.loop); }
  CProgressReporter(const CProgressReporter&) = delete;
  CProgressReporter& operator=(const CProgressReporter&) = delete;

  // A group as the program is told. Thread: any.
  void note(const GroupSnapshot& shot);
  void setProxy(const std::string& proxy);

  // Begins what is due; gives the time of the next report.
  std::optional<TimePoint> tick();
  // Gives up what is under way.
  void stop();

 private:
  // What is worth an extra report when it changes.
  struct Standing {
    std::int32_t state = kGroupIdle;
    std::string waitingFor;
    bool operator==(const Standing&) const = default;
  };
  struct Group {
    bool changed = false;  // it is to be told at once
    bool repeats = false;  // it transfers, and is told every so often
    TimePoint begun{};     // the last report
    std::unique_ptr<CReportRequest> request;
  };

  static std::optional<TimePoint> dueOf(const Group& group, Duration interval);
  void takeNotes();
  void giveUpLate(TimePoint now);
  void send(std::int32_t groupId, Group& group, TimePoint now);
  void answered(std::int32_t groupId, const HttpResponse& response);
  void failed(const std::string& why);

  const std::string direction_;
  const Parts parts_;

  CMutex mutex_;
  std::map<std::int32_t, Standing> standings_ GUARDED_BY(mutex_);
  std::map<std::int32_t, bool> changed_ GUARDED_BY(mutex_);  // groups; false: gone
  std::string proxy_ GUARDED_BY(mutex_);

  // The loop's thread only.
  std::map<std::int32_t, Group> groups_;  // with something to tell
  std::size_t underWay_ = 0;
  bool failing_ = false;
};

}  // namespace zt_transfers
