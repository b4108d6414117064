#include "upload/upload_runner.h"

#include <utility>

namespace zt_transfers {

CUploadRunner::CUploadRunner(const UploadTools& tools)
    : tools_(tools), slots_([this] { offerSlots(); }), aborts_(tools) {}

bool CUploadRunner::start(StartOrder order) {
  const JobId job = order.job;
  slots_.setMost(order.parts.requests);
  auto attempt = std::make_unique<CUploadAttempt>(
      CUploadAttempt::Shared{tools_, support_, digestTags_, slots_, aborts_}, std::move(order),
      *this);
  CUploadAttempt& begun = *attempt;
  attempts_.emplace(job, std::move(attempt));
  begun.begin();
  return attempts_.count(job) != 0;
}

// What is to be discarded the engine knows: it is told of every session once that has begun.
void CUploadRunner::stop(const AttemptStop& stop) {
  const auto attempt = attempts_.find(stop.job);
  if (attempt != attempts_.end()) {
    attempt->second->leave();
    attempts_.erase(attempt);
  }
}

void CUploadRunner::stopAll() {
  attempts_.clear();
  aborts_.clear();
  support_.clear();
  digestTags_.clear();
  offering_ = false;
}

void CUploadRunner::discard(const DiscardOrder& order) {
  aborts_.abort(order);
}

void CUploadRunner::onEnded(JobId job, const AttemptOutcome& outcome) {
  attempts_.erase(job);
  tools_.observer.onAttemptDone(job, outcome);
}

// Later, since what has come to an end is still on the stack, and files that wait go first.
void CUploadRunner::offerSlots() {
  if (offering_) {
    return;
  }
  offering_ = true;
  tools_.loop.post([this] {
    offering_ = false;
    for (const auto& [job, attempt] : attempts_) {
      attempt->onSlotFree();
    }
  });
}

}  // namespace zt_transfers
