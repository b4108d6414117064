#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/mutex.h"
#include "download/partial_file.h"
#include "engine/attempt.h"

namespace zt_transfers {

// Puts files that have arrived in place: durable first, then noted as about to be renamed, then
// renamed, then the name durable. What arrives while it is at it waits and is done together, with
// one sync for all where there are many; waiting for the disk is most of the work of a small file.
//
// A folder whose sync fails is tried again by the file's next attempt, which finds the file by its
// final name and does not rename it a second time.
//
// Thread: any of the pool's. The one that finds nobody at it does the work.
class CFinalizer {
 public:
  struct Arrival {
    AttemptId attemptId = 0;
    std::shared_ptr<CPartialFile> file;
    std::shared_ptr<AttemptProgress> progress;
  };
  // Called on the pool.
  struct Dependencies {
    // See IAttemptObserver::keepDurably.
    std::function<void(const std::vector<AttemptId>& attempts)> synced;
    // Not for a file that was discarded.
    std::function<void(const std::vector<AttemptEnd>& ends)> finalized;
  };

  explicit CFinalizer(Dependencies calls) : calls_(std::move(calls)) {}

  void finalize(std::vector<Arrival> arrivals);

 private:
  struct Finalization : Arrival {
    explicit Finalization(Arrival arrival) : Arrival(std::move(arrival)) {}

    bool syncedAll = false;  // its sync was one of the whole file system
    // Why it goes no further, or how the sync of its folder went.
    std::optional<AttemptOutcome> trouble{};
    std::optional<AttemptOutcome> folderSynced{};

    bool goesOn() const { return !trouble && !file->discarded(); }
  };
  using Batch = std::vector<Finalization>;

  void finalizeAll(Batch& batch);
  template <typename Step>
  static void tryStep(Finalization& finalization, Step step);
  static void syncAll(Batch& batch);
  void noteSynced(Batch& batch);
  static void syncFolders(Batch& batch);
  void notify(Batch& batch);

  const Dependencies calls_;
  CMutex mutex_;
  CConditionVariable enough_;
  Batch waiting_ GUARDED_BY(mutex_);
  bool finalizing_ GUARDED_BY(mutex_) = false;
};

}  // namespace zt_transfers
