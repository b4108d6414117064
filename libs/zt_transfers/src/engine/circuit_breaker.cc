#include "engine/circuit_breaker.h"

#include <algorithm>

namespace zt_transfers {
namespace {

// A server that serves so many attempts at a time has recovered.
constexpr std::size_t kRecovered = 32;

constexpr std::size_t kMaxFailedKept = 1024;

// A file fails by itself when its failures, with successes of others between them, add up to this.
// Two failures with a rest between them say less: each can belong to an outage of its own.
constexpr std::uint32_t kEnough = 4;
constexpr std::uint32_t kWithoutRest = 2;
constexpr std::uint32_t kAcrossRest = 1;

// Failures that are further apart can be those of two outages.
constexpr std::chrono::minutes kMemory{10};

// After this time another probe may be begun beside one that has neither ended nor moved bytes.
constexpr std::chrono::minutes kProbeLimit{1};

}  // namespace

bool CCircuitBreaker::admits(std::size_t running, TimePoint now) const {
  switch (state_) {
    case State::kClosed:
      return limit_ == 0 || running < limit_;
    case State::kResting:
    case State::kProbing:
      return until_ <= now;
  }
  return false;
}

CCircuitBreaker::Ticket CCircuitBreaker::begin(TimePoint now) {
  if (state_ != State::kClosed) {
    state_ = State::kProbing;
    until_ = now + kProbeLimit;
  }
  return {epoch_, successes_};
}

void CCircuitBreaker::end(Ticket ticket) {
  if (state_ == State::kProbing && current(ticket)) {
    state_ = State::kResting;
    until_ = TimePoint{};
  }
}

void CCircuitBreaker::succeed(Ticket ticket, std::size_t running) {
  ++successes_;
  suspects_.clear();
  if (current(ticket)) {
    outages_ = 0;
    close(running);
  }
}

void CCircuitBreaker::prove(Ticket ticket, std::size_t running) {
  if (current(ticket)) {
    close(running);
  }
}

void CCircuitBreaker::close(std::size_t running) {
  if (state_ != State::kClosed) {
    state_ = State::kClosed;
    limit_ = std::max<std::size_t>(2, running + 1);
  } else if (limit_ != 0 && ++limit_ > kRecovered) {
    limit_ = 0;
  }
}

void CCircuitBreaker::open(Failure trouble, TimePoint until) {
  state_ = State::kResting;
  trouble_ = std::move(trouble);
  until_ = until;
  ++epoch_;
  ++outages_;
}

void CCircuitBreaker::endRest() {
  until_ = TimePoint{};
}

void CCircuitBreaker::noteFailure(FileRef file, TimePoint now) {
  const Key key{file.groupId, file.index};
  if (failed_.size() >= kMaxFailedKept && failed_.count(key) == 0) {
    failed_.clear();
  }
  const auto [entry, isNew] = failed_.try_emplace(key);
  Failed& failed = entry->second;
  if (isNew || now - failed.last > kMemory) {
    failed.alone = 0;
  } else if (failed.successes < successes_) {
    failed.alone += failed.epoch == epoch_ ? kWithoutRest : kAcrossRest;
  }
  failed.last = now;
  failed.epoch = epoch_;
  failed.successes = successes_;
}

bool CCircuitBreaker::failsAlone(FileRef file, TimePoint now) const {
  const auto failed = failed_.find({file.groupId, file.index});
  return failed != failed_.end() && now - failed->second.last <= kMemory &&
         failed->second.alone >= kEnough;
}

bool CCircuitBreaker::suspect(FileRef file, bool counts) {
  suspects_[{file.groupId, file.index}] += counts ? 1 : 0;
  return suspects_.size() >= kSuspects;
}

std::vector<CCircuitBreaker::Refund> CCircuitBreaker::takeRefunds() {
  std::vector<Refund> refunds;
  for (const auto& [key, retries] : suspects_) {
    refunds.push_back({{key.first, key.second}, retries});
  }
  suspects_.clear();
  return refunds;
}

}  // namespace zt_transfers
