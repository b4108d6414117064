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

// A file that waits is worth more than one more request for a file that is under way.
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
    release(std::move(attempt->second));
    attempts_.erase(attempt);
  } else if (finalization == finalizing_.end() && stop.discard) {
    observer_.onOrphaned(stop.orphan());
  } else if (stop.discard) {
    // Nobody is told of its landing any more, so it is forgotten here; the pool closes it.
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
  for (const auto& [attemptId, rest] : finalizing_) {
    stopped_.push_back(rest);
  }
  attempts_.clear();
  finalizing_.clear();
  small_.clear();
}

void CDownloadRunner::syncToDisk() {
  for (const auto& [file, progress] : stopped_) {
    try {
      file->checkpoint();
      progress->setResume(file->resume());
    } catch (const std::exception& error) {
      log_.warning("What was downloaded of a file may be fetched again: " +
                   std::string(error.what()));
    }
  }
  stopped_.clear();
}

void CDownloadRunner::discard(const CleanupTask& order) {
  pool_.post([order, &observer = observer_, &ops = fileOps_] {
    AttemptOutcome outcome = AttemptOutcome::done();
    try {
      CPartialEntry::remove(ops, order.orphan.folder, order.orphan.resume.download());
    } catch (const CPartialFileInUse&) {
      // By an attempt that ends and removes it, or by one that has taken it over.
      outcome = AttemptOutcome::retry("", failure::kDiskTrouble);
    } catch (const std::exception& error) {
      outcome = judgeDiskError(error);
    }
    if (outcome.kind == AttemptOutcome::Kind::kFinal && outcome.code == failure::kTargetMissing) {
      outcome = AttemptOutcome::done();  // the folder that it was in is gone
    }
    observer.onCleanedUp(order.id, outcome);
  });
}

void CDownloadRunner::onArrived(AttemptId attemptId, std::uint64_t size) {
  if (!observer_.onAttemptFinalizing(attemptId)) {
    return;  // its stop is on the way
  }
  const auto found = attempts_.find(attemptId);
  const std::shared_ptr<CPartialWriter> writer = found->second->writer();
  const std::shared_ptr<AttemptProgress> progress = found->second->progress();
  finalizing_.emplace(attemptId, Rest{writer->file(), progress});
  CFinalizer::Arrival arrival{attemptId, writer->file(), progress};
  if (auto whole = writer->takeCompleteBody()) {
    small_.add({.finalization = std::move(arrival),
                .validator = std::move(whole->validator),
                .size = size,
                .content = std::move(whole->content)},
               loop_.clock().now());
  } else {
    writer->finish([this, size, arrival](const std::shared_ptr<CPartialFile>& file,
                                         const std::optional<AttemptOutcome>& trouble) {
      const auto wrong = trouble ? trouble : checkContent(*file, *arrival.progress, size);
      if (wrong) {
        finalized({{arrival.attemptId, *wrong}});
      } else {
        finalizer_.finalize({arrival});
      }
    });
  }
  attempts_.erase(found);
}

void CDownloadRunner::onEnded(AttemptId attemptId, const AttemptOutcome& outcome) {
  // The outcome may be the attempt's own.
  const AttemptOutcome kept = outcome;
  const auto attempt = attempts_.find(attemptId);
  release(std::move(attempt->second));
  attempts_.erase(attempt);
  observer_.onAttemptDone(attemptId, kept);
}

// Lets the pool close, and possibly remove, the partial file.
void CDownloadRunner::release(std::unique_ptr<CDownloadAttempt> attempt) {
  const std::shared_ptr<CPartialWriter> writer = attempt->writer();
  attempt.reset();
  if (writer) {
    pool_.post([file = writer->file()] {});
  }
}

// On the pool. The engine is told before the loop, which can be stopping.
void CDownloadRunner::finalized(const std::vector<AttemptEnd>& ends) {
  observer_.onAttemptsDone(ends);
  loop_.post([this, ends] {
    for (const AttemptEnd& end : ends) {
      finalizing_.erase(end.attemptId);
    }
  });
}

}  // namespace zt_transfers
