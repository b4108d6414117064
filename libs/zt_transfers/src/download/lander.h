#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

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
class CLander {
 public:
  struct Arrival {
    JobId job = 0;
    std::shared_ptr<CPartialFile> file;
    std::shared_ptr<JobProgress> progress;
    // Called on a thread of the pool, not for a file that was discarded.
    std::function<void(const AttemptOutcome&)> done;
  };
  // See IAttemptObserver::keepDurably.
  using Synced = std::function<void(const std::vector<JobId>& jobs)>;

  explicit CLander(Synced synced) : synced_(std::move(synced)) {}

  void land(Arrival arrival);

 private:
  struct Landing : Arrival {
    bool failed = false;
    bool syncedAll = false;  // its sync was one of the whole file system
    // How the sync of its folder went, once that was tried.
    std::optional<AttemptOutcome> folderSynced{};

    bool goesOn() const { return !failed && !file->discarded(); }
  };
  using Batch = std::vector<Landing>;

  void landAll(Batch& batch);
  template <typename Step>
  static void tryStep(Landing& landing, Step step);
  static void settleAll(Batch& batch);
  void noteSynced(Batch& batch);
  static void syncFolders(Batch& batch);

  const Synced synced_;
  std::mutex mutex_;
  std::condition_variable enough_;
  // Guarded by mutex_.
  Batch waiting_;
  bool landing_ = false;
};

}  // namespace zt_transfers
