#include "download/lander.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "download/file_trouble.h"

namespace zt_transfers {
namespace {

// From here on one sync of the file system is quicker than one for each file.
constexpr std::size_t kSyncTogetherFrom = 4;

}  // namespace

void CLander::land(std::shared_ptr<CPartialFile> file, Done done) {
  std::unique_lock lock(mutex_);
  waiting_.push_back({std::move(file), std::move(done)});
  if (landing_) {
    return;
  }
  landing_ = true;
  while (!waiting_.empty()) {
    Batch batch = std::exchange(waiting_, {});
    lock.unlock();
    landAll(batch);
    batch.clear();
    lock.lock();
  }
  landing_ = false;
}

void CLander::landAll(Batch& batch) {
  settleAll(batch);
  for (Arrival& arrival : batch) {
    tryStep(arrival, [&] {
      if (!arrival.file->discarded()) {
        arrival.file->publish();
      }
    });
  }
  syncFolders(batch);
  for (const Arrival& arrival : batch) {
    if (!arrival.failed && !arrival.file->discarded()) {
      arrival.done(AttemptOutcome::done());
    }
  }
}

// Ends the file's landing if the step fails.
template <typename Step>
void CLander::tryStep(Arrival& arrival, Step step) {
  if (arrival.failed) {
    return;
  }
  try {
    step();
  } catch (const std::exception& error) {
    arrival.failed = true;
    arrival.done(judgeFileTrouble(error));
  }
}

void CLander::settleAll(Batch& batch) {
  const bool together = batch.size() >= kSyncTogetherFrom;
  for (Arrival& arrival : batch) {
    tryStep(arrival, [&] { arrival.file->settle(!together); });
  }
  if (!together) {
    return;
  }
  for (auto arrival = batch.begin(); arrival != batch.end(); ++arrival) {
    const bool synced = std::any_of(batch.begin(), arrival, [&](const Arrival& other) {
      return other.syncedAll && other.file->sameFileSystem(*arrival->file);
    });
    tryStep(*arrival, [&] { arrival->syncedAll = !synced && arrival->file->syncFileSystem(); });
  }
}

void CLander::syncFolders(Batch& batch) {
  for (auto arrival = batch.begin(); arrival != batch.end(); ++arrival) {
    const bool synced = std::any_of(batch.begin(), arrival, [&](const Arrival& other) {
      return !other.failed && other.file->sameFolder(*arrival->file);
    });
    tryStep(*arrival, [&] {
      if (!synced) {
        arrival->file->syncFolder();
      }
    });
  }
}

}  // namespace zt_transfers
