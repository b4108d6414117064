#include "engine/circuit_breaker.h"

#include <algorithm>

namespace zt_transfers {
namespace {

// A server that serves so many attempts at a time has recovered.
constexpr std::size_t kRecovered = 32;

constexpr std::size_t kMaxFailedKept = 1024;

// A file that has failed so often while others succeeded fails by itself; once is enough if many
// did. Failures that are further apart can be those of two outages.
constexpr std::uint32_t kTimesAlone = 2;
constexpr std::uint64_t kMany = 16;
constexpr std::chrono::minutes kMemory{10};

}  // namespace

bool CCircuitBreaker::admits(std::size_t running, TimePoint now) const {
  switch (state_) {
    case State::kClosed:
      return limit_ == 0 || running < limit_;
    case State::kResting:
      return until_ <= now;
    case State::kProbing:
      return false;
  }
  return false;
}

CCircuitBreaker::Ticket CCircuitBreaker::begin() {
  if (state_ == State::kResting) {
    state_ = State::kProbing;
  }
  return {epoch_, successes_};
}

void CCircuitBreaker::end(Ticket ticket) {
  if (state_ == State::kProbing && current(ticket)) {
    state_ = State::kResting;
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
  if (state_ == State::kResting) {
    until_ = TimePoint{};
  }
}

bool CCircuitBreaker::noteFailure(FileRef file, TimePoint now) {
  const Key key{file.groupId, file.index};
  if (failed_.size() >= kMaxFailedKept && failed_.count(key) == 0) {
    failed_.clear();
  }
  Failed& failed = failed_[key];
  if (now - failed.last > kMemory) {
    failed.alone = 0;
  } else if (failed.successes != successes_) {
    failed.alone += successes_ - failed.successes < kMany ? 1 : kTimesAlone;
  }
  failed.last = now;
  failed.successes = successes_;
  return failed.alone >= kTimesAlone;
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
