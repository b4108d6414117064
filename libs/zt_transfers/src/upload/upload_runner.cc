#include "upload/upload_runner.h"

#include <utility>

namespace zt_transfers {

CUploadRunner::CUploadRunner(const UploadDependencies& dependencies)
    : dependencies_(dependencies), slots_([this] { offerSlots(); }), aborter_(dependencies) {}

bool CUploadRunner::start(StartOrder order) {
  const AttemptId attemptId = order.attemptId;
  slots_.setMax(order.parts.requests);
  auto attempt = std::make_unique<CUploadAttempt>(
      CUploadAttempt::Shared{dependencies_, support_, digestTags_, slots_, aborter_},
      std::move(order), *this);
  CUploadAttempt& begun = *attempt;
  attempts_.emplace(attemptId, std::move(attempt));
  begun.begin();
  return attempts_.count(attemptId) != 0;
}

// What is to be discarded the engine knows: it is told of every session once that has begun.
void CUploadRunner::stop(const AttemptStop& stop) {
  const auto attempt = attempts_.find(stop.attemptId);
  if (attempt != attempts_.end()) {
    attempt->second->leave();
    attempts_.erase(attempt);
  }
}

void CUploadRunner::stopAll() {
  attempts_.clear();
  aborter_.clear();
  support_.clear();
  digestTags_.clear();
  offering_ = false;
}

void CUploadRunner::discard(const CleanupTask& order) {
  aborter_.abort(order);
}

void CUploadRunner::onEnded(AttemptId attemptId, const AttemptOutcome& outcome) {
  attempts_.erase(attemptId);
  dependencies_.observer.onAttemptDone(attemptId, outcome);
}

// Later, since what has come to an end is still on the stack, and files that wait go first.
void CUploadRunner::offerSlots() {
  if (offering_) {
    return;
  }
  offering_ = true;
  dependencies_.loop.post([this] {
    offering_ = false;
    for (const auto& [attemptId, attempt] : attempts_) {
      attempt->onSlotFree();
    }
  });
}

}  // namespace zt_transfers
