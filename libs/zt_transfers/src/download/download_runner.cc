#include "download/download_runner.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "download/disk_verdict.h"

namespace zt_transfers {

bool CDownloadRunner::start(StartOrder order) {
  const AttemptId attemptId = order.attemptId;
  maxConcurrent_ = order.maxConcurrent;
  auto attempt = std::make_unique<CDownloadAttempt>(
      CPartialWriter::Dependencies{loop_, pool_, chunks_, observer_, fileOps_}, log_,
      std::move(order), *this);
  CDownloadAttempt& begun = *attempt;
  attempts_.emplace(attemptId, std::move(attempt));
  begun.begin();
  makeRoom();
  return attempts_.count(attemptId) != 0;
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
    attempts_.erase(attempt);
    closeOnPool(writer);
  } else if (finalization == finalizing_.end() && stop.discard) {
    observer_.onOrphaned(stop.orphan());
  } else if (stop.discard) {
    // No end is reported for a discarded file, so it is forgotten here. The pool closes it.
    finalization->second.file->discard();
    pool_.post([file = std::move(finalization->second.file)] {});
    finalizing_.erase(finalization);
  }
}

void CDownloadRunner::stopAll() {
  for (const auto& [attemptId, attempt] : attempts_) {
    if (attempt->writer()) {
      stopped_.push_back({attempt->writer()->file(), attempt->progress()});
    }
  }
  for (const auto& [attemptId, written] : finalizing_) {
    stopped_.push_back(written);
  }
  attempts_.clear();
  finalizing_.clear();
  small_.clear();
}

void CDownloadRunner::syncToDisk() {
  for (const auto& [file, progress] : stopped_) {
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
  pool_.post([order, &observer = observer_, &ops = fileOps_] {
    AttemptOutcome outcome = AttemptOutcome::done();
    try {
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
  const std::shared_ptr<AttemptProgress> progress = found->second->progress();
  if (!observer_.onAttemptFinalizing(attemptId)) {
    writer->close();
    return;  // the attempt was stopped, and `stop` follows
  }
  finalizing_.emplace(attemptId, Written{writer->file(), progress});
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

void CDownloadRunner::onEnded(AttemptId attemptId, const AttemptOutcome& outcome) {
  const auto attempt = attempts_.find(attemptId);
  closeOnPool(attempt->second->writer());
  loop_.retire(std::move(attempt->second));
  attempts_.erase(attempt);
  observer_.onAttemptDone(attemptId, outcome);
}

// Lets the pool close, and possibly remove, the partial file.
void CDownloadRunner::closeOnPool(const std::shared_ptr<CPartialWriter>& writer) {
  if (writer) {
    pool_.post([file = writer->file()] {});
  }
}

// On the pool. Reports to the engine before the loop, which may be stopping.
void CDownloadRunner::finalized(const std::vector<AttemptEnd>& ends) {
  observer_.onAttemptsDone(ends);
  loop_.post([this, ends] {
    for (const AttemptEnd& end : ends) {
      finalizing_.erase(end.attemptId);
    }
  });
}

}  // namespace zt_transfers
