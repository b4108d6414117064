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
// that come close together are written together. What cannot be written (a full disk) stays in
// memory and is tried again.
//
// Thread: all operations by the owner, unless they say otherwise.
class CQueueWriter {
 public:
  struct Pace {
    std::chrono::milliseconds gather{50};  // from a change to its write
    std::chrono::milliseconds firstRetry{1000};
    std::chrono::milliseconds lastRetry{30000};  // they double up to it
  };
  struct Parts {
    CQueueCache& store;
    CDatabaseFile& file;
    ILog& log;
    // Descriptions of this group's files have come, or cannot be read. Called on the writer's
    // thread.
    std::function<void(std::int32_t groupId)> arrived;
  };

  // `database` may be null: it is then opened when there is something to write.
  CQueueWriter(std::string name, const Parts& parts, std::unique_ptr<CQueueDatabase> database,
               const Pace& pace);
  // Writes what it can, then closes the database.
  ~CQueueWriter();
  CQueueWriter(const CQueueWriter&) = delete;
  CQueueWriter& operator=(const CQueueWriter&) = delete;

  // Waits until all changes are durable; false when they cannot be written now.
  bool flush();
  // Waits until the changes so far are durable, but no longer than `limit`, nor while they cannot
  // be written. Thread: any.
  void flush(std::chrono::milliseconds limit);

 private:
  void run();
  void wait();
  void serveRequests();
  void serve(const CQueueCache::Range& range);
  // Writes if it is time to.
  void writeDue();
  bool takeOrder();
  bool writeBatch();
  void tellFinished(bool done);
  void failed(const std::string& what);
  void sweep();

  // Constant after construction.
  const std::string name_;
  const Parts parts_;
  const Pace pace_;

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
  bool ordered_ GUARDED_BY(mutex_) = false;         // somebody waits for it
  std::uint64_t tries_ GUARDED_BY(mutex_) = 0;      // to write that were begun, ever
  std::uint64_t failedTry_ GUARDED_BY(mutex_) = 0;  // the latest that failed
  bool failing_ GUARDED_BY(mutex_) = false;
  std::uint64_t durable_ GUARDED_BY(mutex_) = 0;  // changes

  std::thread thread_;
};

}  // namespace zt_transfers
