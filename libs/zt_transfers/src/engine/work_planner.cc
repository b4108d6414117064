#include "engine/work_planner.h"

#include <algorithm>

namespace zt_transfers {
namespace {

// Files that fail before they begin are handled in batches so that the lock is released in between.
constexpr int kMaxStartsPerTick = 512;

// Files that have arrived and are being finalized do not count as transfers.
constexpr std::size_t kMaxFinalizing = 128;

}  // namespace

void CWorkPlanner::setSettings(TransferSettings settings) {
  settings_ = std::move(settings);
  retries_.setMaxRetries(settings_.maxRetries);
}

void CWorkPlanner::stop() {
  running_ = false;
  schedule_.clearRound();
  schedule_.clearDues();
}

void CWorkPlanner::list(CTransferGroup& group) {
  if (!group.scheduling.listed && running_ && group.count(FilePhase::kWaiting) != 0) {
    group.scheduling.listed = true;
    schedule_.addToRound(group.id());
  }
}

TransferWork CWorkPlanner::takeWork(bool congested) {
  TransferWork work;
  work.stops = table_.takeStops();
  if (!running_) {
    return work;
  }
  work.cleanups = table_.cleanups().takeDue();
  for (CleanupTask& order : work.cleanups) {
    order.proxy = settings_.proxy;
  }
  wakeRetries();
  if (!congested) {
    beginReady(work);
  }
  for (const auto due : {schedule_.nextDue(), table_.cleanups().nextDue()}) {
    if (due && (!work.nextDue || *due < *work.nextDue)) {
      work.nextDue = due;
    }
  }
  return work;
}

void CWorkPlanner::wakeRetries() {
  const TimePoint now = clock_.now();
  while (const auto due = schedule_.takeDue(now)) {
    CTransferGroup* group = table_.find(due->file.groupId);
    if (group == nullptr || group->cancelled()) {
      continue;
    }
    if (!due->wholeGroup && group->file(due->file.index).phase == FilePhase::kBackingOff) {
      group->changePhase(due->file.index, FilePhase::kWaiting);
    }
    list(*group);
  }
}

void CWorkPlanner::beginReady(TransferWork& work) {
  const std::size_t max = std::max<std::uint32_t>(settings_.maxConcurrent, 1);
  const TimePoint now = clock_.now();
  const auto hasRoom = [&] {
    return table_.attempts().transferring() < max &&
           table_.attempts().size() < max + kMaxFinalizing;
  };
  for (int starts = 0; hasRoom(); ++starts) {
    if (starts == kMaxStartsPerTick) {
      work.nextDue = now;
      return;
    }
    const auto groupId = schedule_.takeFromRound();
    if (!groupId) {
      return;
    }
    CTransferGroup* group = table_.find(*groupId);
    if (group == nullptr) {
      continue;
    }
    group->scheduling.listed = false;
    if (group->paused() || group->cancelled()) {
      continue;
    }
    if (group->scheduling.notBefore > now) {
      schedule_.addDue({group->scheduling.notBefore, {*groupId, 0}, true});
      continue;
    }
    if (beginNext(*group, work)) {
      list(*group);
    }
  }
}

// False when no file waits, or its description is still being loaded.
bool CWorkPlanner::beginNext(CTransferGroup& group, TransferWork& work) {
  const auto index = group.takeWaiting();
  if (!index) {
    return false;
  }
  if (expired(group.identity().tokenExpires)) {
    failWaiting(group, *index, {failure::kTokenExpired, "the group's token has expired"}, work);
    return true;
  }
  auto spec = store_.spec({group.id(), *index});
  if (!spec) {
    if (store_.load({group.id(), *index})) {
      group.putBack(*index);
      return false;  // specsArrived lists the group again
    }
    failWaiting(group, *index, {failure::kQueueUnreadable, "its description cannot be read"}, work);
    return true;
  }
  if (expired(spec->expires)) {
    failWaiting(group, *index, {failure::kUrlExpired, "its URL has expired"}, work);
    return true;
  }
  StartOrder& order = work.starts.emplace_back(table_.begin(group, *index, std::move(*spec)));
  order.verify = settings_.verify;
  order.proxy = settings_.proxy;
  order.parts = settings_.parts;
  order.maxConcurrent = std::max<std::uint32_t>(settings_.maxConcurrent, 1);
  table_.notify(group);
  return true;
}

void CWorkPlanner::failWaiting(CTransferGroup& group, std::uint32_t index, const Problem& problem,
                               TransferWork& work) {
  work.failures.push_back(table_.fileText(group, index) + ": failed: " + problem.reason);
  table_.fail(group, index, failureOf(problem.code, problem.reason));
  table_.notify(group);
}

bool CWorkPlanner::expired(std::uint64_t time) const {
  return time != 0 && static_cast<std::uint64_t>(clock_.secondsSince1970()) >= time;
}

std::string CWorkPlanner::applyOutcome(CTransferGroup& group, std::uint32_t index,
                                       const AttemptOutcome& outcome) {
  if (outcome.kind == AttemptOutcome::Kind::kDone) {
    group.scheduling.outages = 0;
    group.scheduling.waitingFor.reset();
    const std::string text = table_.fileText(group, index);
    table_.move(group, index, FilePhase::kCompleted);
    return text + ": completed";
  }
  if (outcome.progressed) {
    group.forgetRetries(index);
  }
  const CRetryPolicy::Decision decision =
      retries_.decide(group.file(index).retries, group.scheduling, outcome, clock_.now());
  if (decision.retry) {
    return scheduleRetry(group, index, outcome, decision);
  }
  const std::string text = table_.fileText(group, index);
  table_.fail(group, index, failureOf(outcome.code, outcome.reason));
  const std::string after =
      outcome.kind == AttemptOutcome::Kind::kRetry
          ? " after " + std::to_string(group.file(index).retries + 1) + " attempts"
          : "";
  return text + ": failed" + after + ": " + outcome.reason;
}

std::string CWorkPlanner::scheduleRetry(CTransferGroup& group, std::uint32_t index,
                                        const AttemptOutcome& outcome,
                                        const CRetryPolicy::Decision& decision) {
  table_.move(group, index, FilePhase::kBackingOff);
  schedule_.addDue({clock_.now() + decision.delay, {group.id(), index}, false});
  const std::string delay = std::to_string(decision.delay.count()) + " ms";
  if (!decision.counts) {
    return table_.fileText(group, index) + ": waits " + delay +
           " until it can go on: " + outcome.reason;
  }
  group.countRetry(index);
  return table_.fileText(group, index) + ": attempt " + std::to_string(group.file(index).retries) +
         " of " + std::to_string(decision.maxRetries + 1) + " failed, next in " + delay + ": " +
         outcome.reason;
}

}  // namespace zt_transfers
