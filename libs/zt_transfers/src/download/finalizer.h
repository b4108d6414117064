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

// Gives files that have arrived their final names: syncs the content, records the name that the
// file is about to get, renames, and syncs the folder. Files that arrive meanwhile wait and are
// finalized together, many of them with one sync, because waiting for the disk is most of the work
// of a small file.
//
// After a failed folder sync the file's next attempt syncs again: it finds the file by its recorded
// name and does not rename it a second time.
//
// Thread: any of the pool's. The first one does the work for those that come while it is busy.
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
    // Not called for a discarded file.
    std::function<void(const std::vector<AttemptEnd>& ends)> finalized;
  };

  explicit CFinalizer(Dependencies dependencies) : dependencies_(std::move(dependencies)) {}

  void finalize(std::vector<Arrival> arrivals);

 private:
  struct Finalization : Arrival {
    explicit Finalization(Arrival arrival) : Arrival(std::move(arrival)) {}

    bool syncedAll = false;  // by a sync of the whole file system
    bool named = false;
    std::optional<AttemptOutcome> failure{};
    std::optional<AttemptOutcome> folderSynced{};  // the result of that sync

    bool continues() const { return !failure && !file->discarded(); }
    bool unnamed() const { return continues() && !named; }
  };
  using Batch = std::vector<Finalization>;

  void finalizeAll(Batch& batch);
  template <typename Step>
  static void tryStep(Finalization& finalization, Step step);
  static void syncAll(Batch& batch);
  bool noteNames(Batch& batch);
  static void publish(Batch& batch);
  static void syncFolders(Batch& batch);
  void notify(Batch& batch);

  const Dependencies dependencies_;
  CMutex mutex_;
  CConditionVariable enough_;
  Batch waiting_ GUARDED_BY(mutex_);
  bool finalizing_ GUARDED_BY(mutex_) = false;
};

}  // namespace zt_transfers
