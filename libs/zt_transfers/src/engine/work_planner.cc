#include "engine/work_planner.h"

#include <algorithm>

namespace zt_transfers {
namespace {

// Files that fail before they begin are worked off in portions, so that the lock is given free.
constexpr int kStartsAtOnce = 512;

// Files that have arrived and are being put in place, beside those that use the network.
constexpr std::size_t kMaxFinalizing = 128;

}  // namespace

void CWorkPlanner::stop() {
  running_ = false;
  schedule_.clearRound();
  schedule_.clearDues();
}

void CWorkPlanner::list(CTransferGroup& group) {
  if (!group.pace.listed && running_ && group.count(FilePhase::kWaiting) != 0) {
    group.pace.listed = true;
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
  const std::size_t most = std::max<std::uint32_t>(settings_.maxConcurrent, 1);
  const TimePoint now = clock_.now();
  const auto hasRoom = [&] {
    return table_.attempts().transferring() < most &&
           table_.attempts().size() < most + kMaxFinalizing;
  };
  for (int starts = 0; hasRoom(); ++starts) {
    if (starts == kStartsAtOnce) {
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
    group->pace.listed = false;
    if (group->paused() || group->cancelled()) {
      continue;
    }
    if (group->pace.notBefore > now) {
      schedule_.addDue({group->pace.notBefore, {*groupId, 0}, true});
      continue;
    }
    if (beginNext(*group, work)) {
      list(*group);
    }
  }
}

// False when none waits, or its description has yet to come.
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
      return false;  // the engine is told when it comes
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

void CWorkPlanner::failWaiting(CTransferGroup& group, std::uint32_t index, const Trouble& trouble,
                               TransferWork& work) {
  work.failures.push_back(table_.fileText(group, index) + ": failed: " + trouble.reason);
  table_.fail(group, index, failureOf(trouble.code, trouble.reason));
  table_.notify(group);
}

bool CWorkPlanner::expired(std::uint64_t time) const {
  return time != 0 && static_cast<std::uint64_t>(clock_.secondsSince1970()) >= time;
}

std::string CWorkPlanner::applyOutcome(CTransferGroup& group, std::uint32_t index,
                                       const AttemptOutcome& outcome) {
  if (outcome.kind == AttemptOutcome::Kind::kDone) {
    group.pace.troubles = 0;
    group.pace.waitingFor.reset();
    const std::string text = table_.fileText(group, index);
    table_.move(group, index, FilePhase::kCompleted);
    return text + ": completed";
  }
  if (outcome.progressed) {
    group.forgetRetries(index);
  }
  if (mayRetry(group.file(index), outcome)) {
    return scheduleRetry(group, index, outcome);
  }
  const std::string text = table_.fileText(group, index);
  table_.fail(group, index, failureOf(outcome.code, outcome.reason));
  const std::string after =
      outcome.kind == AttemptOutcome::Kind::kRetry
          ? " after " + std::to_string(group.file(index).retries + 1) + " attempts"
          : "";
  return text + ": failed" + after + ": " + outcome.reason;
}

bool CWorkPlanner::mayRetry(const FileSlot& file, const AttemptOutcome& outcome) const {
  if (outcome.kind != AttemptOutcome::Kind::kRetry) {
    return false;
  }
  switch (outcome.retryBudget) {
    case AttemptOutcome::RetryBudget::kFree:
      return true;
    case AttemptOutcome::RetryBudget::kAtLeastOne:
      return file.retries < std::max<std::uint32_t>(settings_.maxRetries, 1);
    default:
      return file.retries < settings_.maxRetries;
  }
}

std::string CWorkPlanner::scheduleRetry(CTransferGroup& group, std::uint32_t index,
                                        const AttemptOutcome& outcome) {
  const TimePoint now = clock_.now();
  retries_.rest(group.pace, outcome, now);
  table_.move(group, index, FilePhase::kBackingOff);
  if (outcome.retryBudget == AttemptOutcome::RetryBudget::kFree) {
    const auto delay = retries_.delay(std::max<std::uint32_t>(group.pace.troubles, 1), outcome);
    schedule_.addDue({now + delay, {group.id(), index}, false});
    return table_.fileText(group, index) + ": waits " + std::to_string(delay.count()) +
           " ms until it can go on: " + outcome.reason;
  }
  group.countRetry(index);
  const std::uint32_t retry = group.file(index).retries;
  const auto delay = retries_.delay(retry, outcome);
  schedule_.addDue({now + delay, {group.id(), index}, false});
  return table_.fileText(group, index) + ": attempt " + std::to_string(retry) + " of " +
         std::to_string(settings_.maxRetries + 1) + " failed, next in " +
         std::to_string(delay.count()) + " ms: " + outcome.reason;
}

}  // namespace zt_transfers
