#include "download/download_runner.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "download/check_content.h"
#include "download/file_trouble.h"

namespace zt_transfers {

bool CDownloadRunner::start(StartOrder order) {
  const JobId job = order.job;
  mostAtOnce_ = order.mostAtOnce;
  auto attempt = std::make_unique<CDownloadAttempt>(
      CPartialWriter::Surroundings{loop_, pool_, chunks_, observer_}, log_, std::move(order),
      *this);
  CDownloadAttempt& begun = *attempt;
  attempts_.emplace(job, std::move(attempt));
  begun.begin();
  makeRoom();
  return attempts_.count(job) != 0;
}

std::size_t CDownloadRunner::requests() const {
  std::size_t count = 0;
  for (const auto& [job, attempt] : attempts_) {
    count += attempt->width();
  }
  return count;
}

// A file that waits is worth more than one more request for a file that is under way.
void CDownloadRunner::makeRoom() {
  while (requests() > mostAtOnce_) {
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
  const auto attempt = attempts_.find(stop.job);
  const auto landing = landing_.find(stop.job);
  if (attempt != attempts_.end()) {
    if (stop.discard) {
      attempt->second->discard();
    }
    release(std::move(attempt->second));
    attempts_.erase(attempt);
  } else if (landing == landing_.end() && stop.discard) {
    observer_.onLeftBehind(stop.leftover());
  } else if (stop.discard) {
    // Nobody is told of its landing any more, so it is forgotten here; the pool closes it.
    landing->second.file->discard();
    pool_.post([file = std::move(landing->second.file)] {});
    landing_.erase(landing);
  }
}

void CDownloadRunner::stopAll() {
  for (const auto& [job, attempt] : attempts_) {
    if (attempt->writer()) {
      stopped_.push_back({attempt->writer()->file(), attempt->progress()});
    }
  }
  for (const auto& [job, rest] : landing_) {
    stopped_.push_back(rest);
  }
  attempts_.clear();
  landing_.clear();
  small_.clear();
}

void CDownloadRunner::settle() {
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

void CDownloadRunner::discard(const DiscardOrder& order) {
  pool_.post([order, &observer = observer_] {
    AttemptOutcome outcome = AttemptOutcome::done();
    try {
      CPartialPlace::remove(order.leftover.folder, order.leftover.resume.download());
    } catch (const CPartialFileInUse&) {
      // By an attempt that ends and removes it, or by one that has taken it over.
      outcome = AttemptOutcome::retry("", failure::kDiskTrouble);
    } catch (const std::exception& error) {
      outcome = judgeFileTrouble(error);
    }
    if (outcome.kind == AttemptOutcome::Kind::kFinal && outcome.code == failure::kTargetMissing) {
      outcome = AttemptOutcome::done();  // the folder that it was in is gone
    }
    observer.onDiscarded(order.id, outcome);
  });
}

void CDownloadRunner::onArrived(JobId job, std::uint64_t size) {
  if (!observer_.onAttemptLanding(job)) {
    return;  // its stop is on the way
  }
  const auto found = attempts_.find(job);
  const std::shared_ptr<CPartialWriter> writer = found->second->writer();
  const std::shared_ptr<JobProgress> progress = found->second->progress();
  landing_.emplace(job, Rest{writer->file(), progress});
  CLander::Arrival arrival{job, writer->file(), progress};
  if (auto whole = writer->takeWhole()) {
    small_.add({.landing = std::move(arrival),
                .validator = std::move(whole->validator),
                .size = size,
                .content = std::move(whole->content)},
               loop_.clock().now());
  } else {
    writer->finish([this, size, arrival](const std::shared_ptr<CPartialFile>& file,
                                         const std::optional<AttemptOutcome>& trouble) {
      const auto wrong = trouble ? trouble : checkContent(*file, *arrival.progress, size);
      if (wrong) {
        landed({{arrival.job, *wrong}});
      } else {
        lander_.land({arrival});
      }
    });
  }
  attempts_.erase(found);
}

void CDownloadRunner::onEnded(JobId job, const AttemptOutcome& outcome) {
  // The outcome may be the attempt's own.
  const AttemptOutcome kept = outcome;
  const auto attempt = attempts_.find(job);
  release(std::move(attempt->second));
  attempts_.erase(attempt);
  observer_.onAttemptDone(job, kept);
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
void CDownloadRunner::landed(const std::vector<AttemptEnd>& ends) {
  observer_.onAttemptsDone(ends);
  loop_.post([this, ends] {
    for (const AttemptEnd& end : ends) {
      landing_.erase(end.job);
    }
  });
}

}  // namespace zt_transfers
