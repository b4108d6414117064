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
#include "http/http_transport.h"
#include "http/text_request.h"
#include "reports/report_interval.h"

namespace zt_transfers {

// Reports the progress of groups to the service: at intervals (CReportInterval) while a group
// transfers, and at once when its state changes. Each group has at most one report under way; the
// next one has the state of its own time. A report that fails is dropped.
//
// Reports count neither as transfers nor against the rate limit.
// Thread: the loop's, except for `note` and `setProxy`.
class CProgressReporter {
 public:
  // A report without a response within this time is dropped.
  static constexpr std::chrono::seconds kTimeLimit{10};
  // Concurrent reports of all groups.
  static constexpr std::size_t kMaxConcurrent = 4;

  // All must outlive it. `look` returns a group's current report; nothing when the group is gone.
  struct Dependencies {
    IHttpTransport& loop;
    ILog& log;
    std::function<std::optional<CTransferEngine::GroupReport>(std::int32_t)> look;
  };

  // `direction`: "upload" or "download".
  CProgressReporter(std::string direction, Dependencies dependencies);
  ~CProgressReporter() { CReportInterval::shared().leave(dependencies_.loop); }
  CProgressReporter(const CProgressReporter&) = delete;
  CProgressReporter& operator=(const CProgressReporter&) = delete;

  // Call it for each group event. Thread: any.
  void note(const GroupSnapshot& shot);
  void setProxy(const std::string& proxy);

  // Sends the reports that are due; returns when the next one is.
  std::optional<TimePoint> tick();
  // Drops the reports under way.
  void stop();

 private:
  // A change of this causes a report.
  struct Standing {
    std::int32_t state = kGroupIdle;
    std::string waitingFor;
    bool operator==(const Standing&) const = default;
  };
  struct Group {
    bool changed = false;  // a report is due at once
    bool repeats = false;  // it transfers, so reports repeat
    TimePoint begun{};     // when the last report was sent
    std::unique_ptr<CTextRequest> request;
  };

  static std::optional<TimePoint> dueOf(const Group& group, Duration interval);
  void takeNotes();
  void giveUpLate(TimePoint now);
  void send(std::int32_t groupId, Group& group, TimePoint now);
  void answered(std::int32_t groupId, const HttpResponse& response);
  void failed(const std::string& why);

  const std::string direction_;
  const Dependencies dependencies_;

  CMutex mutex_;
  std::map<std::int32_t, Standing> standings_ GUARDED_BY(mutex_);
  std::map<std::int32_t, bool> changed_ GUARDED_BY(mutex_);  // by group; false: gone
  std::string proxy_ GUARDED_BY(mutex_);

  // The loop's thread only.
  std::map<std::int32_t, Group> groups_;  // with reports under way or to come
  std::size_t underWay_ = 0;
  bool failing_ = false;
};

}  // namespace zt_transfers
