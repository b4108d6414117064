#include "engine/work_planner.h"

#include <algorithm>

namespace zt_transfers {
namespace {

// Files are handled in batches so that the lock is released in between.
constexpr int kMaxFilesPerTick = 512;

// Files that have arrived and are being finalized do not count as transfers.
constexpr std::size_t kMaxFinalizing = 128;

// An attempt that has been moving bytes for so long shows that its server can be reached.
constexpr std::chrono::seconds kProven{5};

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
  for (const auto due :
       {schedule_.nextDue(), table_.cleanups().nextDue(), table_.origins().nextDue(clock_.now())}) {
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
  const auto hasRoom = [&] {
    return table_.attempts().transferring() < max &&
           table_.attempts().size() < max + kMaxFinalizing;
  };
  int looks = kMaxFilesPerTick;
  int begins = kMaxFilesPerTick;
  for (lookAtListed(looks, work); hasRoom() && begins > 0; lookAtListed(looks, work)) {
    const auto candidate = table_.origins().next(clock_.now());
    if (!candidate) {
      break;
    }
    --begins;
    beginAt(*candidate, work);
  }
  if (looks <= 0 || begins <= 0) {
    work.nextDue = clock_.now();
  }
}

void CWorkPlanner::lookAtListed(int& budget, TransferWork& work) {
  while (budget > 0) {
    const auto groupId = schedule_.takeFromRound();
    if (!groupId) {
      return;
    }
    --budget;
    CTransferGroup* group = table_.find(*groupId);
    if (group == nullptr) {
      continue;
    }
    group->scheduling.listed = false;
    if (mayBegin(*group, clock_.now())) {
      lookAt(*group, budget, work);
    }
  }
}

// False when the group is listed again once it may.
bool CWorkPlanner::mayBegin(CTransferGroup& group, TimePoint now) {
  if (group.paused() || group.cancelled()) {
    return false;
  }
  if (group.scheduling.notBefore > now) {
    schedule_.addDue({group.scheduling.notBefore, {group.id(), 0}, true});
    return false;
  }
  return !group.scheduling.oneByOne || group.count(FilePhase::kRunning) == 0;
}

// Has the group wait at the origins of its parked files. Parks more while all of them rest.
void CWorkPlanner::lookAt(CTransferGroup& group, int& budget, TransferWork& work) {
  COriginTable& origins = table_.origins();
  const std::size_t running = group.count(FilePhase::kRunning);
  bool allRest = true;
  OriginId resting = 0;
  for (const auto& [origin, files] : group.parked()) {
    origins.await(origin, group.id(), running);
    allRest = allRest && rests(origin);
    resting = origin;
  }
  // A file that comes back does not wait until the others have begun.
  for (bool more = group.hasReturned() || allRest; more; more = allRest) {
    if (budget <= 0) {
      list(group);
      return;
    }
    --budget;
    OriginId origin = 0;
    if (!parkNext(group, origin, work)) {
      break;
    }
    if (origin != 0) {
      origins.await(origin, group.id(), running);
      allRest = allRest && rests(origin);
      resting = origin;
    }
  }
  if (allRest && resting != 0 && running == 0 && !group.scheduling.waitingFor &&
      !origins.mayProbe(resting, clock_.now())) {
    group.scheduling.waitingFor = origins.breaker(resting).trouble();
    table_.notify(group);
  }
}

bool CWorkPlanner::rests(OriginId origin) const {
  return table_.origins().breaker(origin).state() != CCircuitBreaker::State::kClosed;
}

// False when no further file waits, or its description is still being loaded. `origin` stays 0 for
// a file that failed.
bool CWorkPlanner::parkNext(CTransferGroup& group, OriginId& origin, TransferWork& work) {
  const auto index = group.takeWaiting();
  if (!index) {
    return false;
  }
  bool coming = false;
  const auto spec = loadSpec(group, *index, coming, work);
  if (coming) {
    group.putBack(*index);
    return false;
  }
  if (spec) {
    origin = table_.origins().idOf(spec->url);
    // At an origin that rests others go first: the next probe must not meet the same file again.
    const FileSlot& file = group.file(*index);
    if (rests(origin)) {
      group.park(*index, origin);
      store_.release({group.id(), *index});
    } else if (file.retries != 0 || file.waits != 0) {
      group.parkFirst(*index, origin);
    } else {
      group.park(*index, origin);
    }
  }
  return true;
}

// Nothing if the description is `coming` (specsArrived lists the group again) or cannot be read.
// Then the file has failed.
std::optional<FileSpec> CWorkPlanner::loadSpec(CTransferGroup& group, std::uint32_t index,
                                               bool& coming, TransferWork& work) {
  auto spec = store_.spec({group.id(), index});
  if (!spec) {
    coming = store_.load({group.id(), index});
    if (!coming) {
      failWaiting(group, index, {failure::kQueueUnreadable, "its description cannot be read"},
                  work);
    }
  }
  return spec;
}

void CWorkPlanner::beginAt(const COriginTable::Candidate& candidate, TransferWork& work) {
  const auto [origin, groupId, load] = candidate;
  COriginTable& origins = table_.origins();
  origins.leave(origin, groupId);
  CTransferGroup* group = table_.find(groupId);
  if (group == nullptr || !mayBegin(*group, clock_.now())) {
    return;
  }
  const auto index = group->takeParked(origin);
  if (!index || beginFile(*group, *index, origin, work)) {
    list(*group);
  }
}

// False when the file's description is still being loaded.
bool CWorkPlanner::beginFile(CTransferGroup& group, std::uint32_t index, OriginId origin,
                             TransferWork& work) {
  bool coming = false;
  auto spec = loadSpec(group, index, coming, work);
  if (!spec) {
    if (coming) {
      group.parkFirst(index, origin);
    }
    return !coming;
  }
  if (const OriginId actual = table_.origins().idOf(spec->url); actual != origin) {
    group.parkFirst(index, actual);  // it was given another URL while it waited
    return true;
  }
  if (expired(group.identity().tokenExpires)) {
    failWaiting(group, index, {failure::kTokenExpired, "the group's token has expired"}, work);
    return true;
  }
  if (expired(spec->expires)) {
    failWaiting(group, index, {failure::kUrlExpired, "its URL has expired"}, work);
    return true;
  }
  StartOrder& order =
      work.starts.emplace_back(table_.begin(group, index, std::move(*spec), origin));
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

bool CWorkPlanner::applyProgress(RunningAttempt& attempt, CTransferGroup& group, TimePoint now) {
  const bool wasOneByOne = std::exchange(group.scheduling.oneByOne, false);
  group.scheduling.waitingFor.reset();
  if (wasOneByOne) {
    list(group);
  }
  if (attempt.proven || now - attempt.begunAt < kProven) {
    return wasOneByOne;
  }
  attempt.proven = true;
  table_.origins().prove(attempt.ticket);
  return true;
}

std::string CWorkPlanner::applyOutcome(CTransferGroup& group, std::uint32_t index,
                                       const COriginTable::Ticket& ticket,
                                       const AttemptOutcome& outcome) {
  if (outcome.kind == AttemptOutcome::Kind::kDone) {
    table_.origins().succeed(ticket);
    group.scheduling.outages = 0;
    group.scheduling.oneByOne = false;
    group.scheduling.waitingFor.reset();
    const std::string text = table_.fileText(group, index);
    table_.move(group, index, FilePhase::kCompleted);
    return text + ": completed";
  }
  if (outcome.progressed) {
    group.forgetRetries(index);
  }
  const bool ownFault = !blameOrigin(group, index, ticket, outcome);
  const CRetryPolicy::Decision decision =
      retries_.decide(group.file(index), ownFault, group.scheduling, outcome, clock_.now());
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

bool CWorkPlanner::blameOrigin(CTransferGroup& group, std::uint32_t index,
                               const COriginTable::Ticket& ticket, const AttemptOutcome& outcome) {
  const COriginTable::Judgement judgement =
      table_.origins().judge(ticket, {group.id(), index}, outcome, clock_.now());
  for (const auto& [file, retries] : judgement.refunds) {
    CTransferGroup* owner = table_.find(file.groupId);
    if (owner != nullptr && !owner->cancelled()) {
      owner->refundRetries(file.index, retries);
    }
  }
  for (const std::int32_t id : judgement.groups) {
    if (CTransferGroup* waiting = table_.find(id)) {
      list(*waiting);
    }
  }
  if (judgement.toBlame) {
    group.scheduling.troubledBy = ticket.origin;
    group.scheduling.waitingFor = failureOf(outcome.code, outcome.reason);
  }
  return judgement.toBlame;
}

std::string CWorkPlanner::scheduleRetry(CTransferGroup& group, std::uint32_t index,
                                        const AttemptOutcome& outcome,
                                        const CRetryPolicy::Decision& decision) {
  table_.move(group, index, FilePhase::kBackingOff);
  schedule_.addDue({clock_.now() + decision.delay, {group.id(), index}, false});
  const std::string delay = std::to_string(decision.delay.count()) + " ms";
  if (!decision.counts) {
    group.countWait(index);
    return table_.fileText(group, index) + ": waits " + delay +
           " until it can go on: " + outcome.reason;
  }
  group.countRetry(index);
  return table_.fileText(group, index) + ": attempt " + std::to_string(group.file(index).retries) +
         " of " + std::to_string(decision.maxRetries + 1) + " failed, next in " + delay + ": " +
         outcome.reason;
}

}  // namespace zt_transfers
