#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "base/clock.h"
#include "base/log.h"
#include "base/mutex.h"
#include "store/database_file.h"
#include "store/queue_cache.h"

namespace zt_transfers {

// The thread that writes a queue's changes to its database and reads descriptions from it. Changes
// within a short time are written together. Changes that cannot be written (a full disk) stay in
// memory and are tried again; so is the opening of a database that cannot be opened.
//
// Thread: all operations by the owner, unless they say otherwise.
class CQueueWriter {
 public:
  struct Timing {
    std::chrono::milliseconds gather{50};  // from a change to its write
    std::chrono::milliseconds firstRetry{1000};
    std::chrono::milliseconds lastRetry{30000};  // they double up to it
    std::chrono::milliseconds patience{5000};    // with another program that reads the database
  };
  struct Dependencies {
    CQueueCache& store;
    CDatabaseFile& file;
    ILog& log;
    // Descriptions of this group's files were loaded, or cannot be read. Called on the writer's
    // thread.
    std::function<void(std::int32_t groupId)> arrived;
    // For a database that is opened late: reads it, which may be repeated; then it is open. Called
    // on the writer's thread.
    std::function<void(CQueueDatabase&)> load;
    std::function<void()> opened;
  };

  // `database` may be null; it is then opened as soon as that is possible.
  CQueueWriter(std::string name, const Dependencies& dependencies,
               std::unique_ptr<CQueueDatabase> database, const Timing& timing);
  // Tries to write all changes, then closes the database.
  ~CQueueWriter();
  CQueueWriter(const CQueueWriter&) = delete;
  CQueueWriter& operator=(const CQueueWriter&) = delete;

  // Waits until all changes so far are durable; false when they cannot be written now.
  bool flush();
  // The same for no longer than `limit`; returns at once while writing fails. Thread: any.
  void flush(std::chrono::milliseconds limit);

 private:
  void run();
  void wait();
  void serveRequests();
  void serve(const CQueueCache::Range& range);
  // Writes if a write is due or ordered.
  void writeDue();
  bool takeOrder();
  bool writeBatch();
  bool openDatabase();
  void notifyFinished(bool done);
  void failed(const std::string& what);
  void sweep();

  // Constant after construction.
  const std::string name_;
  const Dependencies dependencies_;
  const Timing timing_;

  // The writer's thread only.
  std::unique_ptr<CQueueDatabase> database_;
  std::optional<TimePoint> due_;        // when to write
  std::chrono::milliseconds retry_{0};  // since the last failure; 0: none
  bool sweeping_ = true;
  std::string damage_;  // why the database is to be set aside

  CMutex mutex_;
  CConditionVariable woken_;
  CConditionVariable finished_;
  bool changed_ GUARDED_BY(mutex_) = false;
  bool requested_ GUARDED_BY(mutex_) = false;
  bool stopping_ GUARDED_BY(mutex_) = false;
  bool ordered_ GUARDED_BY(mutex_) = false;         // a flush waits
  std::uint64_t tries_ GUARDED_BY(mutex_) = 0;      // to write, of all time
  std::uint64_t failedTry_ GUARDED_BY(mutex_) = 0;  // the last one that failed
  bool failing_ GUARDED_BY(mutex_) = false;
  std::uint64_t durable_ GUARDED_BY(mutex_) = 0;  // changes

  std::thread thread_;
};

}  // namespace zt_transfers
