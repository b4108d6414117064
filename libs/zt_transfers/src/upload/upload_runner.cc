#include "upload/upload_runner.h"

#include <utility>

namespace zt_transfers {

CUploadRunner::CUploadRunner(const UploadDependencies& dependencies)
    : dependencies_(dependencies), slots_([this] { offerSlots(); }), aborter_(dependencies) {}

bool CUploadRunner::start(StartOrder order) {
  const AttemptId attemptId = order.attemptId;
  slots_.setMax(order.parts.requests);
  auto attempt = std::make_unique<CUploadAttempt>(
      CUploadAttempt::Dependencies{dependencies_, servers_, slots_, aborter_}, std::move(order),
      *this);
  CUploadAttempt& begun = *attempt;
  attempts_.emplace(attemptId, std::move(attempt));
  begun.begin();
  return attempts_.count(attemptId) != 0;
}

// `discard` needs no work here: the engine was told of every session that has begun.
void CUploadRunner::stop(const AttemptStop& stop) {
  const auto attempt = attempts_.find(stop.attemptId);
  if (attempt != attempts_.end()) {
    attempt->second->abandon();
    attempts_.erase(attempt);
  }
}

void CUploadRunner::stopAll() {
  attempts_.clear();
  aborter_.clear();
  servers_.clear();
  offering_ = false;
}

void CUploadRunner::discard(const CleanupTask& order) {
  aborter_.abort(order);
}

void CUploadRunner::onEnded(AttemptId attemptId, const AttemptOutcome& outcome) {
  auto ended = attempts_.extract(attemptId);
  dependencies_.loop.retire(std::move(ended.mapped()));
  dependencies_.observer.onAttemptDone(attemptId, outcome);
}

// Posted, as an attempt may be in the middle of a callback.
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
