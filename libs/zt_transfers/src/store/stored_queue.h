#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/log.h"
#include "store/database_file.h"
#include "store/queue_cache.h"
#include "store/queue_writer.h"

namespace zt_transfers {

// Replaces `found` by the stored queue, and adds to `store` what it needs of it. After an exception
// `found` has what was added.
void readQueue(CQueueDatabase& database, CQueueCache& store, RestoredQueue& found);

// A manager's queue: always in memory, and also on disk between `open` and `close`. While its
// database cannot be used, it goes on in memory and tries again.
//
// Thread: all operations by the owner; the store is used by the engine.
class CStoredQueue {
 public:
  struct Listener {
    std::function<void(std::int32_t)> arrived;  // see CQueueWriter
    // What was stored, when the database could be read only after `open`. Called on the writer's
    // thread.
    std::function<void(RestoredQueue)> found;
  };

  CStoredQueue(std::string threadName, ILog& log, Listener listener,
               const CQueueWriter::Timing& timing = {});
  ~CStoredQueue();
  CStoredQueue(const CStoredQueue&) = delete;
  CStoredQueue& operator=(const CStoredQueue&) = delete;

  IQueueStore& store() { return store_; }

  // Replaces the store's content by that of the database at `path`. When that cannot be read now,
  // the result has no groups, and ids that cannot meet those in it. The engine must be stopped.
  RestoredQueue open(const std::string& path);
  // See CQueueWriter. Thread: any, but not during `open`, `close` and `abandon`.
  void flush(std::chrono::milliseconds limit);
  // Writes all changes and releases the database. False, and it stays open, when they cannot be
  // written.
  bool close();
  // Releases the database even if changes are lost.
  void abandon();

 private:
  void load(CQueueDatabase& database);

  const std::string threadName_;
  ILog& log_;
  const Listener listener_;
  const CQueueWriter::Timing timing_;
  CQueueCache store_;
  RestoredQueue found_;  // by the thread that opens the database
  std::unique_ptr<CDatabaseFile> file_;
  std::unique_ptr<CQueueWriter> writer_;
};

}  // namespace zt_transfers
