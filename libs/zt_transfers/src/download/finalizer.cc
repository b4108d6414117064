#include "download/finalizer.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "download/disk_verdict.h"

namespace zt_transfers {
namespace {

// For this many files, one sync of the file system is faster than one for each file.
constexpr std::size_t kSyncTogetherFrom = 4;

// While files keep arriving, a sync waits until there are this many, for a moment at most: it costs
// the same for all of them.
constexpr std::size_t kGatherFiles = 32;
constexpr std::chrono::milliseconds kGatherLimit{4};

}  // namespace

void CFinalizer::finalize(std::vector<Arrival> arrivals) {
  CMutexLock lock(mutex_);
  for (Arrival& arrival : arrivals) {
    waiting_.emplace_back(std::move(arrival));
  }
  if (finalizing_) {
    if (waiting_.size() >= kGatherFiles) {
      enough_.notifyOne();
    }
    return;
  }
  finalizing_ = true;
  while (!waiting_.empty()) {
    Batch batch = std::exchange(waiting_, {});
    lock.unlock();
    finalizeAll(batch);
    batch.clear();
    lock.lock();
    if (!waiting_.empty()) {
      enough_.waitFor(mutex_, kGatherLimit,
                      [this]() REQUIRES(mutex_) { return waiting_.size() >= kGatherFiles; });
    }
  }
  finalizing_ = false;
}

void CFinalizer::finalizeAll(Batch& batch) {
  syncAll(batch);
  // A second round is for files whose names others have got meanwhile, perhaps one of this batch.
  while (noteNames(batch)) {
    publish(batch);
  }
  syncFolders(batch);
  notify(batch);
}

void CFinalizer::notify(Batch& batch) {
  std::vector<AttemptEnd> ends;
  for (Finalization& finalization : batch) {
    if (finalization.continues()) {
      finalization.file->close();
      ends.push_back({finalization.attemptId, std::move(*finalization.folderSynced)});
    } else if (finalization.failure) {
      ends.push_back({finalization.attemptId, std::move(*finalization.failure)});
    }
  }
  dependencies_.finalized(ends);
}

// A failed step ends the file's finalization.
template <typename Step>
void CFinalizer::tryStep(Finalization& finalization, Step step) {
  if (!finalization.failure) {
    finalization.failure = failureOf(step);
    if (finalization.failure) {
      finalization.progress->setResume(finalization.file->resume());
    }
  }
}

void CFinalizer::syncAll(Batch& batch) {
  const bool together = batch.size() >= kSyncTogetherFrom;
  for (Finalization& finalization : batch) {
    tryStep(finalization, [&] { finalization.file->sync(!together); });
  }
  if (!together) {
    return;
  }
  for (auto finalization = batch.begin(); finalization != batch.end(); ++finalization) {
    const bool synced = std::any_of(batch.begin(), finalization, [&](const Finalization& other) {
      return other.syncedAll && other.file->sameFileSystem(*finalization->file);
    });
    tryStep(*finalization, [&] {
      finalization->syncedAll = !synced && finalization->file->syncFileSystem();
      if (synced || finalization->syncedAll) {
        finalization->file->checkWritten();
      }
    });
  }
}

// False when no file is left without a name. No name is recorded for two files: after a power cut
// the second one would be taken for the first.
bool CFinalizer::noteNames(Batch& batch) {
  std::vector<AttemptId> attempts;
  for (auto finalization = batch.begin(); finalization != batch.end(); ++finalization) {
    const bool waits = std::any_of(batch.begin(), finalization, [&](const Finalization& earlier) {
      return earlier.unnamed() && earlier.file->sameTarget(*finalization->file);
    });
    if (!finalization->unnamed() || waits) {
      continue;
    }
    tryStep(*finalization, [&] {
      finalization->file->noteSynced();
      finalization->file->chooseName();
      finalization->progress->setResume(finalization->file->resume());
      attempts.push_back(finalization->attemptId);
    });
  }
  if (!attempts.empty()) {
    dependencies_.synced(attempts);
  }
  return !attempts.empty();
}

void CFinalizer::publish(Batch& batch) {
  for (Finalization& finalization : batch) {
    if (finalization.unnamed()) {
      tryStep(finalization, [&] { finalization.named = finalization.file->publish(); });
    }
  }
}

// Once for each folder, because a second sync may not report again that the first one has failed.
void CFinalizer::syncFolders(Batch& batch) {
  for (auto finalization = batch.begin(); finalization != batch.end(); ++finalization) {
    if (!finalization->continues()) {
      continue;
    }
    const auto same = std::find_if(batch.begin(), finalization, [&](const Finalization& other) {
      return other.folderSynced && other.file->sameFolder(*finalization->file);
    });
    if (same != finalization) {
      finalization->folderSynced = same->folderSynced;
      continue;
    }
    try {
      finalization->file->syncFolder();
      finalization->folderSynced = AttemptOutcome::done();
    } catch (const std::exception& error) {
      finalization->folderSynced = AttemptOutcome::retry(
          "the file is there, but its name may not last: " + std::string(error.what()));
    }
  }
}

}  // namespace zt_transfers
