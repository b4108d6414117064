#include "reports/progress_reporter.h"

#include <exception>
#include <utility>

#include "reports/report_text.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers {
namespace {

bool isSuccess(const HttpResponse& response) {
  return response.code == CURLE_OK && response.status >= 200 && response.status < 300;
}

}  // namespace

CProgressReporter::CProgressReporter(std::string direction, Dependencies dependencies)
    : direction_(std::move(direction)), dependencies_(std::move(dependencies)) {
  CReportInterval::shared().join(dependencies_.loop);
}

void CProgressReporter::note(const GroupSnapshot& shot) {
  {
    const CMutexLock lock(mutex_);
    if (shot.cancelled) {
      standings_.erase(shot.id);
      changed_[shot.id] = false;
      return;
    }
    Standing now{shot.state, shot.waitingFor};
    Standing& known = standings_[shot.id];
    if (known == now) {
      return;
    }
    known = std::move(now);
    changed_[shot.id] = true;
  }
  dependencies_.loop.wake();
}

void CProgressReporter::setProxy(const std::string& proxy) {
  const CMutexLock lock(mutex_);
  proxy_ = proxy;
}

std::optional<TimePoint> CProgressReporter::tick() {
  const std::chrono::seconds interval = CReportInterval::shared().interval();
  if (interval == std::chrono::seconds::zero()) {
    return std::nullopt;  // changes are reported once reports are wanted
  }
  const TimePoint now = dependencies_.loop.clock().now();
  takeNotes();
  giveUpLate(now);
  std::optional<TimePoint> next;
  const auto wait = [&next](TimePoint until) { next = next ? std::min(*next, until) : until; };
  for (auto& [id, group] : groups_) {
    auto due = dueOf(group, interval);
    if (!group.request && due && *due <= now && underWay_ < kMaxConcurrent) {
      send(id, group, now);
      due = dueOf(group, interval);
    }
    if (group.request) {
      wait(group.begun + kTimeLimit);
    } else if (due && *due > now) {
      wait(*due);
    }
  }
  std::erase_if(groups_, [&](const auto& entry) {
    return !dueOf(entry.second, interval) && !entry.second.request;
  });
  return next;
}

// Nothing when no report is to come.
std::optional<TimePoint> CProgressReporter::dueOf(const Group& group, Duration interval) {
  if (group.changed) {
    return TimePoint{};
  }
  return group.repeats ? std::optional(group.begun + interval) : std::nullopt;
}

void CProgressReporter::takeNotes() {
  std::map<std::int32_t, bool> changed;
  {
    const CMutexLock lock(mutex_);
    changed.swap(changed_);
  }
  for (const auto& [id, isThere] : changed) {
    Group& group = groups_[id];
    group.changed = isThere;
    group.repeats = group.repeats && isThere;
    if (!isThere && std::exchange(group.request, nullptr)) {
      --underWay_;
    }
  }
}

void CProgressReporter::giveUpLate(TimePoint now) {
  for (auto& [id, group] : groups_) {
    if (group.request && now - group.begun >= kTimeLimit) {
      group.request.reset();
      --underWay_;
      failed("no answer");
    }
  }
}

void CProgressReporter::send(std::int32_t groupId, Group& group, TimePoint now) {
  group.changed = false;
  group.begun = now;
  const auto report = dependencies_.look(groupId);
  group.repeats = report && report->shot.state == kGroupTransferring;
  if (!report || report->shot.state == kGroupIdle) {
    return;
  }
  CTextRequest::Request request{
      .method = "POST",
      .url = reportUrl(CZtTransfersGlobalConfig::getInstance()->restEndPointUrl(),
                       report->shot.bucketId),
      .headers = {{"X-Zantrio-Token", report->token}, {"Content-Type", "application/json"}},
      .body = reportText(direction_, *report),
      .maxRedirects = 0};
  {
    const CMutexLock lock(mutex_);
    request.proxy = proxy_;
  }
  if (request.url.empty()) {
    return;
  }
  try {
    group.request = std::make_unique<CTextRequest>(
        dependencies_.loop, dependencies_.log, std::move(request),
        [this, groupId](const HttpResponse& response) { answered(groupId, response); });
  } catch (const std::exception& error) {
    failed(error.what());
    return;
  }
  ++underWay_;
}

void CProgressReporter::answered(std::int32_t groupId, const HttpResponse& response) {
  const auto group = groups_.find(groupId);
  dependencies_.loop.retire(std::move(group->second.request));
  --underWay_;
  if (isSuccess(response)) {
    failing_ = false;
    return;
  }
  failed(response.code != CURLE_OK ? response.error
                                   : "the service answered " + std::to_string(response.status));
}

// Logged once until a report succeeds again.
void CProgressReporter::failed(const std::string& why) {
  if (!std::exchange(failing_, true)) {
    dependencies_.log.warning("The service cannot be told how far " + direction_ + "s are: " + why +
                              "; they go on, and it is tried again with the next report");
  }
}

void CProgressReporter::stop() {
  groups_.clear();
  underWay_ = 0;
  const CMutexLock lock(mutex_);
  standings_.clear();  // after the next start every group is reported
  changed_.clear();
}

}  // namespace zt_transfers
