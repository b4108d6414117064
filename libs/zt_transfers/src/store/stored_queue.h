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

// A manager's queue: always in memory, and between `open` and `close` on disk as well, if it
// can be.
//
// Thread: all operations by the owner; the store is used by the engine.
class CStoredQueue {
 public:
  // `arrived`: see CQueueWriter.
  CStoredQueue(std::string threadName, ILog& log, std::function<void(std::int32_t)> arrived,
               const CQueueWriter::Pace& pace = {});
  ~CStoredQueue();
  CStoredQueue(const CStoredQueue&) = delete;
  CStoredQueue& operator=(const CStoredQueue&) = delete;

  IQueueStore& store() { return store_; }

  // What the database at `path` holds takes the place of what the store holds. Nothing when no
  // database can be had; the store goes on as it is then. To be called while the engine rests.
  std::optional<RestoredQueue> open(const std::string& path);
  bool isOpen() const { return writer_ != nullptr; }
  // See CQueueWriter. Thread: any, while it is open or closed and stays so.
  void flush(std::chrono::milliseconds limit);
  // Writes everything and gives the database free. False when something cannot be written: then it
  // stays open.
  bool close();
  // Gives the database free whether or not everything could be written.
  void abandon();

 private:
  void load(CQueueDatabase& database, RestoredQueue& found);

  const std::string threadName_;
  ILog& log_;
  const std::function<void(std::int32_t)> arrived_;
  const CQueueWriter::Pace pace_;
  CQueueCache store_;
  std::unique_ptr<CDatabaseFile> file_;
  std::unique_ptr<CQueueWriter> writer_;
};

}  // namespace zt_transfers
