#include "download/finalizer.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "download/file_trouble.h"

namespace zt_transfers {
namespace {

// From here on one sync of the file system is quicker than one for each file.
constexpr std::size_t kSyncTogetherFrom = 4;

// As long as files keep arriving, so many are waited for, a moment at most: a sync costs the same
// for all of them.
constexpr std::size_t kWorthASync = 32;
constexpr std::chrono::milliseconds kGatherLimit{4};

}  // namespace

void CLander::land(std::vector<Arrival> arrivals) {
  std::unique_lock lock(mutex_);
  for (Arrival& arrival : arrivals) {
    waiting_.emplace_back(std::move(arrival));
  }
  if (landing_) {
    if (waiting_.size() >= kWorthASync) {
      enough_.notify_one();
    }
    return;
  }
  landing_ = true;
  while (!waiting_.empty()) {
    Batch batch = std::exchange(waiting_, {});
    lock.unlock();
    landAll(batch);
    batch.clear();
    lock.lock();
    if (!waiting_.empty()) {
      enough_.wait_for(lock, kGatherLimit, [this] { return waiting_.size() >= kWorthASync; });
    }
  }
  landing_ = false;
}

void CLander::landAll(Batch& batch) {
  settleAll(batch);
  noteSynced(batch);
  for (Landing& landing : batch) {
    tryStep(landing, [&] {
      if (!landing.file->discarded()) {
        landing.file->publish();
      }
    });
  }
  syncFolders(batch);
  tell(batch);
}

void CLander::tell(Batch& batch) {
  std::vector<AttemptEnd> ends;
  for (Landing& landing : batch) {
    if (landing.goesOn()) {
      landing.file->close();
      ends.push_back({landing.job, std::move(*landing.folderSynced)});
    } else if (landing.trouble) {
      ends.push_back({landing.job, std::move(*landing.trouble)});
    }
  }
  calls_.landed(ends);
}

// Ends the file's landing if the step fails.
template <typename Step>
void CLander::tryStep(Landing& landing, Step step) {
  if (!landing.trouble) {
    landing.trouble = troubleOf(step);
  }
}

void CLander::settleAll(Batch& batch) {
  const bool together = batch.size() >= kSyncTogetherFrom;
  for (Landing& landing : batch) {
    tryStep(landing, [&] { landing.file->settle(!together); });
  }
  if (!together) {
    return;
  }
  for (auto landing = batch.begin(); landing != batch.end(); ++landing) {
    const bool synced = std::any_of(batch.begin(), landing, [&](const Landing& other) {
      return other.syncedAll && other.file->sameFileSystem(*landing->file);
    });
    tryStep(*landing, [&] { landing->syncedAll = !synced && landing->file->syncFileSystem(); });
    tryStep(*landing, [&] { landing->file->checkWritten(); });
  }
}

void CLander::noteSynced(Batch& batch) {
  std::vector<JobId> jobs;
  for (const Landing& landing : batch) {
    if (landing.goesOn()) {
      landing.file->noteSynced();
      landing.progress->setResume(landing.file->resume());
      jobs.push_back(landing.job);
    }
  }
  calls_.synced(jobs);
}

// Once for each folder, as a second sync may not tell any more that the first one has failed.
void CLander::syncFolders(Batch& batch) {
  for (auto landing = batch.begin(); landing != batch.end(); ++landing) {
    if (!landing->goesOn()) {
      continue;
    }
    const auto same = std::find_if(batch.begin(), landing, [&](const Landing& other) {
      return other.folderSynced && other.file->sameFolder(*landing->file);
    });
    if (same != landing) {
      landing->folderSynced = same->folderSynced;
      continue;
    }
    try {
      landing->file->syncFolder();
      landing->folderSynced = AttemptOutcome::done();
    } catch (const std::exception& error) {
      landing->folderSynced = AttemptOutcome::retry(
          "the file is there, but its name may not last: " + std::string(error.what()));
    }
  }
}

}  // namespace zt_transfers
