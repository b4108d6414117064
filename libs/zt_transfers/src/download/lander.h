#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "download/partial_file.h"
#include "engine/attempt.h"

namespace zt_transfers {

// Puts files that have arrived in place: durable first, then renamed, then the name durable. What
// arrives while it is at it waits and is done together, with one sync for all where there are
// many; waiting for the disk is most of the work of a small file.
//
// Thread: any of the pool's. The one that finds nobody at it does the work.
class CLander {
 public:
  // Called on a thread of the pool, not for a file that was discarded.
  using Done = std::function<void(const AttemptOutcome&)>;

  void land(std::shared_ptr<CPartialFile> file, Done done);

 private:
  struct Arrival {
    std::shared_ptr<CPartialFile> file;
    Done done;
    bool failed = false;
    bool syncedAll = false;  // its sync was one of the whole file system
  };
  using Batch = std::vector<Arrival>;

  static void landAll(Batch& batch);
  template <typename Step>
  static void tryStep(Arrival& arrival, Step step);
  static void settleAll(Batch& batch);
  static void syncFolders(Batch& batch);

  std::mutex mutex_;
  // Guarded by mutex_.
  Batch waiting_;
  bool landing_ = false;
};

}  // namespace zt_transfers
