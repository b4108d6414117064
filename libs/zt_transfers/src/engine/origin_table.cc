#include "engine/origin_table.h"

#include <algorithm>

#include "base/url_parts.h"

namespace zt_transfers {
namespace {

// The server has answered, and the answer is about the file.
bool isAnswer(const AttemptOutcome& outcome) {
  return outcome.code == failure::kRefused || outcome.code == failure::kServerChanged ||
         outcome.code == failure::kWrongDigest || outcome.code == failure::kWrongSize;
}

}  // namespace

OriginId COriginTable::idOf(std::string_view url) {
  const auto [found, isNew] =
      ids_.try_emplace(originOf(url), static_cast<OriginId>(ids_.size() + 1));
  if (isNew) {
    origins_.try_emplace(found->second);
  }
  return found->second;
}

std::size_t COriginTable::running(OriginId origin) const {
  const auto found = origins_.find(origin);
  return found == origins_.end() ? 0 : found->second.running;
}

bool COriginTable::mayProbe(OriginId origin, TimePoint now) const {
  const CCircuitBreaker& one = breaker(origin);
  return one.state() == CCircuitBreaker::State::kResting && one.nextProbeAt() <= now;
}

void COriginTable::endRest(OriginId origin) {
  if (const auto found = origins_.find(origin); found != origins_.end()) {
    found->second.breaker.endRest();
  }
}

void COriginTable::clear() {
  ids_.clear();
  origins_.clear();
  awaited_.clear();
}

void COriginTable::await(OriginId origin, std::int32_t groupId, std::size_t running) {
  Origin& entry = origins_.at(origin);
  const auto [found, isNew] = entry.waiters.try_emplace(groupId);
  Waiter& waiter = found->second;
  if (isNew) {
    waiter = {running, ++lastTurn_, groupId};
    awaited_.insert(origin);
  } else {
    entry.queue.erase(waiter);
    waiter.running = running;
  }
  entry.queue.insert(waiter);
}

void COriginTable::leave(OriginId origin, std::int32_t groupId) {
  Origin& entry = origins_.at(origin);
  if (const auto waiter = entry.waiters.extract(groupId)) {
    entry.queue.erase(waiter.mapped());
  }
  if (entry.waiters.empty()) {
    awaited_.erase(origin);
  }
}

std::optional<COriginTable::Candidate> COriginTable::next(TimePoint now) const {
  std::optional<Candidate> best;
  std::uint64_t turn = 0;
  for (const OriginId id : awaited_) {
    const Origin& origin = origins_.at(id);
    const Waiter& first = *origin.queue.begin();
    const std::size_t load = origin.running + first.running;
    const bool better = !best || load < best->load || (load == best->load && first.turn < turn);
    if (better && origin.breaker.admits(origin.running, now)) {
      best = {id, first.groupId, load};
      turn = first.turn;
    }
  }
  return best;
}

std::optional<TimePoint> COriginTable::nextDue(TimePoint now) const {
  std::optional<TimePoint> first;
  for (const OriginId id : awaited_) {
    const CCircuitBreaker& breaker = origins_.at(id).breaker;
    const TimePoint probeAt = breaker.nextProbeAt();
    if (breaker.state() != CCircuitBreaker::State::kClosed && probeAt > now &&
        (!first || probeAt < *first)) {
      first = probeAt;
    }
  }
  return first;
}

COriginTable::Ticket COriginTable::begin(OriginId origin, TimePoint now) {
  Origin& entry = origins_.at(origin);
  ++entry.running;
  return {origin, entry.breaker.begin(now)};
}

COriginTable::Origin* COriginTable::find(const Ticket& ticket) {
  const auto found = origins_.find(ticket.origin);
  return found == origins_.end() ? nullptr : &found->second;
}

void COriginTable::end(const Ticket& ticket) {
  if (Origin* origin = find(ticket)) {
    --origin->running;
    origin->breaker.end(ticket.breaker);
  }
}

void COriginTable::succeed(const Ticket& ticket) {
  if (Origin* origin = find(ticket)) {
    origin->breaker.succeed(ticket.breaker, origin->running);
  }
}

void COriginTable::prove(const Ticket& ticket) {
  if (Origin* origin = find(ticket)) {
    origin->breaker.prove(ticket.breaker, origin->running);
  }
}

COriginTable::Judgement COriginTable::judge(const Ticket& ticket, FileRef file,
                                            const AttemptOutcome& outcome, TimePoint now) {
  using RetryBudget = AttemptOutcome::RetryBudget;
  Judgement judgement;
  Origin* origin = find(ticket);
  if (origin == nullptr) {
    return judgement;
  }
  CCircuitBreaker& breaker = origin->breaker;
  const bool othersSucceed = breaker.othersSucceed(ticket.breaker);
  if (outcome.progressed || isAnswer(outcome)) {
    breaker.succeed(ticket.breaker, origin->running);
  }
  if (outcome.kind != AttemptOutcome::Kind::kRetry) {
    return judgement;
  }
  const bool certain = outcome.scope == AttemptOutcome::Scope::kOrigin &&
                       (outcome.retryBudget == RetryBudget::kFree || !othersSucceed);
  if (!certain && !outcome.suspectsOrigin) {
    return judgement;
  }
  const bool current = breaker.current(ticket.breaker);
  const bool wasClosed = breaker.state() == CCircuitBreaker::State::kClosed;
  if (!certain && current && !outcome.progressed) {
    breaker.noteFailure(file, now);
  }
  if (!certain && breaker.failsAlone(file, now)) {
    return judgement;
  }
  judgement.toBlame = true;
  if (!current) {
    return judgement;
  }
  if (!certain && wasClosed && breaker.outages() == 0 &&
      !breaker.suspect(file, outcome.retryBudget != RetryBudget::kFree)) {
    judgement.toBlame = false;
    return judgement;
  }
  rest(*origin, outcome, now, judgement);
  return judgement;
}

void COriginTable::rest(Origin& origin, const AttemptOutcome& outcome, TimePoint now,
                        Judgement& judgement) {
  CCircuitBreaker& breaker = origin.breaker;
  judgement.refunds = breaker.takeRefunds();
  if (breaker.state() == CCircuitBreaker::State::kClosed) {
    for (const auto& [groupId, waiter] : origin.waiters) {
      judgement.groups.push_back(groupId);
    }
  }
  breaker.open(failureOf(outcome.code, outcome.reason),
               now + retries_.delay(breaker.outages() + 1, outcome));
}

}  // namespace zt_transfers
