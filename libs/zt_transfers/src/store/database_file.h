#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/log.h"
#include "store/database_lock.h"
#include "store/queue_database.h"

namespace zt_transfers {

// A queue's database file with its lock. Opens the database and sets aside one that is unusable.
//
// Thread: one at a time.
class CDatabaseFile {
 public:
  // `patience`: how long to wait for another program that reads the database.
  CDatabaseFile(std::string path, std::chrono::milliseconds patience, ILog& log)
      : path_(std::move(path)), patience_(patience), log_(log) {}

  // Takes the lock, which stays taken, opens the database and lets `load` read it. Null when that
  // fails now, for example because another process has the lock; the first failure in a row is
  // logged. A database that is damaged or newer is renamed to "<name>.unusable-<time>", and `load`
  // gets a new one.
  std::unique_ptr<CQueueDatabase> open(const std::function<void(CQueueDatabase&)>& load);
  // Renames it, for `reason`. It must not be open.
  bool setAside(const std::string& reason);
  // Whether it is this process's and holds nothing yet.
  bool isNew() const;

  const std::string& path() const { return path_; }

 private:
  bool takeLock();
  void makePrivate() const;
  void complain(const std::string& problem);

  const std::string path_;
  const std::chrono::milliseconds patience_;
  ILog& log_;
  std::optional<CDatabaseLock> lock_;
  bool complained_ = false;
};

}  // namespace zt_transfers
