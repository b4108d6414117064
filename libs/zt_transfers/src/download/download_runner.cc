#include "download/download_runner.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "download/disk_verdict.h"

namespace zt_transfers {
namespace {

constexpr std::uint64_t kRetryRefund = 1024 * 1024;  // bytes of progress that refund the retry

}  // namespace

bool CDownloadRunner::start(StartOrder order) {
  maxConcurrent_ = order.maxConcurrent;
  if (!turns_.enter(order)) {
    return true;
  }
  const AttemptId attemptId = order.attemptId;
  begin(std::move(order));
  return attempts_.count(attemptId) != 0;
}

void CDownloadRunner::begin(StartOrder order) {
  const AttemptId attemptId = order.attemptId;
  std::shared_ptr<CPartialFile> kept = turns_.takeKept(order.file);
  auto attempt = std::make_unique<CDownloadAttempt>(
      CPartialWriter::Dependencies{loop_, pool_, chunks_, observer_, fileOps_}, log_,
      std::move(order), std::move(kept), *this);
  CDownloadAttempt& begun = *attempt;
  attempts_.emplace(attemptId, std::move(attempt));
  begun.begin();
  makeRoom();
}

std::size_t CDownloadRunner::requests() const {
  std::size_t count = 0;
  for (const auto& [attemptId, attempt] : attempts_) {
    count += attempt->width();
  }
  return count;
}

// A waiting file gets its request before a file under way gets a second one.
void CDownloadRunner::makeRoom() {
  while (requests() > maxConcurrent_) {
    const auto widest = std::max_element(attempts_.begin(), attempts_.end(),
                                         [](const auto& left, const auto& right) {
                                           return left.second->width() < right.second->width();
                                         });
    if (widest->second->width() == 1) {
      return;
    }
    widest->second->narrow();
  }
}

void CDownloadRunner::stop(const AttemptStop& stop) {
  const auto attempt = attempts_.find(stop.attemptId);
  const auto finalization = finalizing_.find(stop.attemptId);
  if (attempt != attempts_.end()) {
    if (stop.discard) {
      attempt->second->discard();
    }
    // Ends its requests now: a retired attempt must not hear of them later in this round.
    const std::shared_ptr<CPartialWriter> writer = attempt->second->writer();
    const FileRef file = attempt->second->order().file;
    attempts_.erase(attempt);
    settle(stop.attemptId, file, writer);
  } else if (finalization == finalizing_.end()) {
    turns_.cancel(stop.attemptId);
    ended_.erase(stop.attemptId);  // without a report
    if (stop.discard) {
      observer_.onOrphaned(stop.orphan());
    }
  } else if (stop.discard) {
    // No end is reported for a discarded file, so it is forgotten here. The pool closes it.
    const Written written = std::move(finalization->second);
    finalizing_.erase(finalization);
    written.file->discard();
    endTurn(stop.attemptId, written.ref, written.file, false);
  }
}

std::optional<TimePoint> CDownloadRunner::tick() {
  const auto small = small_.tick(loop_.clock().now());
  const auto turns = turns_.tick();
  return small && turns ? std::min(*small, *turns) : small ? small : turns;
}

void CDownloadRunner::stopAll() {
  for (const auto& [attemptId, attempt] : attempts_) {
    if (attempt->writer()) {
      stopped_.push_back({{}, attempt->writer()->file(), attempt->order().progress});
    }
  }
  for (const auto& [attemptId, ended] : ended_) {
    if (ended.written.file) {
      stopped_.push_back(ended.written);
    }
  }
  for (const auto& [attemptId, written] : finalizing_) {
    stopped_.push_back(written);
  }
  attempts_.clear();
  ended_.clear();
  finalizing_.clear();
  small_.clear();
  turns_.clear();
}

void CDownloadRunner::syncToDisk() {
  for (const auto& [ref, file, progress] : stopped_) {
    try {
      file->checkpoint();
    } catch (const std::exception& error) {
      log_.warning("Downloaded bytes of a file may be fetched again: " + std::string(error.what()));
    }
    progress->setResume(file->resume());
  }
  stopped_.clear();
}

void CDownloadRunner::discard(const CleanupTask& order) {
  auto kept = turns_.takeOrphan(order.orphan);
  if (kept) {
    kept->discard();
  }
  pool_.post([order, kept = std::move(kept), &observer = observer_, &ops = fileOps_]() mutable {
    AttemptOutcome outcome = AttemptOutcome::done();
    try {
      kept.reset();
      CPartialEntry::remove(ops, order.orphan.folder, order.orphan.resume.download());
    } catch (const CPartialFileInUse&) {
      // The attempt ends and removes the file, or has taken it over.
      outcome = AttemptOutcome::retry("", failure::kDiskTrouble);
    } catch (const std::exception& error) {
      outcome = judgeDiskError(error);
    }
    if (outcome.kind == AttemptOutcome::Kind::kFinal && outcome.code == failure::kTargetMissing) {
      outcome = AttemptOutcome::done();  // the file's folder does not exist any more
    }
    observer.onCleanedUp(order.id, outcome);
  });
}

void CDownloadRunner::onArrived(AttemptId attemptId, std::uint64_t size) {
  const auto found = attempts_.find(attemptId);
  const std::shared_ptr<CPartialWriter> writer = found->second->writer();
  const std::shared_ptr<AttemptProgress> progress = found->second->order().progress;
  if (!observer_.onAttemptFinalizing(attemptId)) {
    writer->close();
    return;  // the attempt was stopped, and `stop` follows
  }
  finalizing_.emplace(attemptId, Written{found->second->order().file, writer->file(), progress});
  CFinalizer::Arrival arrival{attemptId, writer->file(), progress};
  if (auto body = writer->takeCompleteBody()) {
    small_.add({.arrival = std::move(arrival),
                .validator = std::move(body->validator),
                .size = size,
                .content = std::move(body->content)},
               loop_.clock().now());
  } else {
    writer->finish([this, size, arrival](const std::shared_ptr<CPartialFile>& file,
                                         const std::optional<AttemptOutcome>& writeFailure) {
      const auto failure =
          writeFailure ? writeFailure : checkContent(*file, *arrival.progress, size);
      if (failure) {
        finalized({{arrival.attemptId, *failure}});
      } else {
        finalizer_.finalize({arrival});
      }
    });
  }
  loop_.retire(std::move(found->second));
  attempts_.erase(found);
}

// Reports the end only once received bytes are written, so that the next attempt finds them.
void CDownloadRunner::onEnded(AttemptId attemptId, const AttemptOutcome& outcome) {
  const auto attempt = attempts_.find(attemptId);
  const StartOrder& order = attempt->second->order();
  const std::shared_ptr<CPartialWriter> writer = attempt->second->writer();
  const FileRef file = order.file;
  ended_.emplace(
      attemptId,
      Ended{{file, writer ? writer->file() : nullptr, order.progress}, order.resume, outcome});
  loop_.retire(std::move(attempt->second));
  attempts_.erase(attempt);
  settle(attemptId, file, writer);
}

// Ends the attempt's turn after its last system call.
void CDownloadRunner::settle(AttemptId attemptId, FileRef ref,
                             const std::shared_ptr<CPartialWriter>& writer) {
  if (!writer) {
    endTurn(attemptId, ref, nullptr, false);
    return;
  }
  writer->whenSettled([this, attemptId, ref, file = writer->file()](bool failed) {
    endTurn(attemptId, ref, file, failed);
  });
}

void CDownloadRunner::endTurn(AttemptId attemptId, FileRef ref, std::shared_ptr<CPartialFile> file,
                              bool failed) {
  const bool done = report(attemptId);
  if (file && (done || file->discarded() || !file->resume().begun())) {
    pool_.post([file = std::move(file)] {});  // closes it, and may remove it
    file = nullptr;
  }
  turns_.end(ref, attemptId, std::move(file), failed);
}

// Whether the file is done.
bool CDownloadRunner::report(AttemptId attemptId) {
  const auto found = ended_.find(attemptId);
  if (found == ended_.end()) {
    return false;
  }
  Ended ended = std::move(found->second);
  ended_.erase(found);
  const DownloadResume& before = ended.before.download();
  const DownloadResume now = ended.written.progress->resume().download();
  const bool sameVersion =
      before.begun() && !now.validator.empty() && now.validator == before.validator;
  ended.outcome.progressed =
      sameVersion && lengthOf(now.written) >= lengthOf(before.written) + kRetryRefund;
  observer_.onAttemptDone(attemptId, ended.outcome);
  return ended.outcome.kind == AttemptOutcome::Kind::kDone;
}

// On the pool. Reports to the engine before the loop, which may be stopping.
void CDownloadRunner::finalized(const std::vector<AttemptEnd>& ends) {
  observer_.onAttemptsDone(ends);
  loop_.post([this, ends] {
    for (const AttemptEnd& end : ends) {
      const auto found = finalizing_.find(end.attemptId);
      if (found != finalizing_.end()) {
        const Written written = std::move(found->second);
        finalizing_.erase(found);
        const bool done = end.outcome.kind == AttemptOutcome::Kind::kDone;
        endTurn(end.attemptId, written.ref, done ? nullptr : written.file, true);
      }
    }
  });
}

}  // namespace zt_transfers
