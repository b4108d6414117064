#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/log.h"
#include "store/database_file.h"
#include "store/queue_cache.h"
#include "store/queue_writer.h"

namespace zt_transfers {

// A manager's queue: always in memory, and also on disk between `open` and `close`, if the disk can
// be used.
//
// Thread: all operations by the owner; the store is used by the engine.
class CStoredQueue {
 public:
  // `arrived`: see CQueueWriter.
  CStoredQueue(std::string threadName, ILog& log, std::function<void(std::int32_t)> arrived,
               const CQueueWriter::Timing& timing = {});
  ~CStoredQueue();
  CStoredQueue(const CStoredQueue&) = delete;
  CStoredQueue& operator=(const CStoredQueue&) = delete;

  IQueueStore& store() { return store_; }

  // Replaces the store's content by that of the database at `path`. Nothing, and the store is
  // unchanged, when the database cannot be used. The engine must be stopped.
  std::optional<RestoredQueue> open(const std::string& path);
  bool isOpen() const { return writer_ != nullptr; }
  // See CQueueWriter. Thread: any, but not during `open`, `close` and `abandon`.
  void flush(std::chrono::milliseconds limit);
  // Writes all changes and releases the database. False, and it stays open, when they cannot be
  // written.
  bool close();
  // Releases the database even if changes are lost.
  void abandon();

 private:
  void load(CQueueDatabase& database, RestoredQueue& found);

  const std::string threadName_;
  ILog& log_;
  const std::function<void(std::int32_t)> arrived_;
  const CQueueWriter::Timing timing_;
  CQueueCache store_;
  std::unique_ptr<CDatabaseFile> file_;
  std::unique_ptr<CQueueWriter> writer_;
};

}  // namespace zt_transfers
