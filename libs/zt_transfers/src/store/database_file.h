#pragma once

#include <functional>
#include <memory>
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
  // Takes the lock of the database at `path`. Null, with a line in the log, when another process
  // uses it or the folder cannot be written to.
  static std::unique_ptr<CDatabaseFile> claim(const std::string& path, ILog& log);

  // Opens it and lets `load` read it. Null when that fails now, which is logged once. A database
  // that is damaged or newer is renamed to "<name>.unusable-<time>", and `load` gets a new one.
  std::unique_ptr<CQueueDatabase> open(const std::function<void(CQueueDatabase&)>& load);
  // Renames it, for `reason`. It must not be open.
  bool setAside(const std::string& reason);
  // Whether it was empty when it was claimed.
  bool isNew() const { return isNew_; }

  const std::string& path() const { return path_; }

 private:
  CDatabaseFile(std::string path, CDatabaseLock lock, ILog& log);

  void makePrivate() const;

  const std::string path_;
  const CDatabaseLock lock_;
  ILog& log_;
  const bool isNew_;
  bool complained_ = false;
};

}  // namespace zt_transfers
