#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "engine/queue_store.h"
#include "store/migrations.h"
#include "store/queue_batch.h"
#include "store/sqlite.h"

namespace zt_transfers {

// The queue on disk, see docs/transfer-engine.md. All operations throw CSqliteError.
//
// Thread: one at a time.
class CQueueDatabase {
 public:
  // The file exists but cannot be used; the text says why.
  class CUnusable : public std::runtime_error {
   public:
    using std::runtime_error::runtime_error;
  };

  // Opens or creates the database and migrates its schema. Waits up to `patience` for another
  // program that reads it. Throws CUnusable when it is damaged, newer, or another program's.
  explicit CQueueDatabase(const std::string& path, std::chrono::milliseconds patience = {},
                          const std::vector<Migration>& migrations = queueMigrations());

  struct Reader {
    std::function<void(const StoredGroup&)> group;
    // The files of the last reported group, in ascending order; indices may be missing.
    std::function<void(FileRef, const StoredState&, std::string_view fileId)> file;
    // Resume data of one of those files.
    std::function<void(FileRef, const TransferResume&)> resume;
    // The last failures of that group, in ascending order.
    std::function<void(FileRef, const Failure&)> failure;
    std::function<void(OrphanId, const Orphan&)> orphan;
  };
  void read(const Reader& reader);
  // The highest group id ever used; 0: none.
  std::int32_t lastGroupId();
  // See IQueueStore.
  std::string salt();

  // Writes the batch in one transaction, durably.
  void write(const QueueBatch& batch);
  // The descriptions of the files from `from` up to, not including, `to`.
  void readSpecs(std::int32_t groupId, std::uint32_t from, std::uint32_t to,
                 const std::function<void(FileRef, std::string_view spec)>& use);
  // Deletes some rows of removed groups; false when there are none.
  bool sweep();

  CSqliteConnection& connection() { return connection_; }

 private:
  void write(const QueueWrite& write);
  void writeGroup(const StoredGroup& group);
  void writeResume(std::int64_t id, std::string_view resume);
  void writeState(std::int64_t id, const QueueWrite& write);
  void writeOrphan(OrphanId id, std::string_view orphan);
  void readFailures(std::int32_t groupId, const Reader& reader);
  void readOrphans(const Reader& reader);
  void check(const std::string& path);

  CSqliteConnection connection_;

  struct Statements {
    explicit Statements(sqlite3* connection);

    CSqliteStatement groups;
    CSqliteStatement files;
    CSqliteStatement lastGroup;
    CSqliteStatement salt;
    CSqliteStatement saveGroup;
    CSqliteStatement removeGroup;
    CSqliteStatement noteRemoved;
    CSqliteStatement addFile;
    CSqliteStatement setState;
    CSqliteStatement removeFile;
    CSqliteStatement saveSpec;
    CSqliteStatement removeSpec;
    CSqliteStatement specs;
    CSqliteStatement saveResume;
    CSqliteStatement removeResume;
    CSqliteStatement resumes;
    CSqliteStatement saveFailure;
    CSqliteStatement removeFailure;
    CSqliteStatement failures;
    CSqliteStatement saveOrphan;
    CSqliteStatement removeOrphan;
    CSqliteStatement orphans;
    CSqliteStatement removedGroup;
    CSqliteStatement sweepFiles;
    CSqliteStatement sweepSpecs;
    CSqliteStatement sweepResumes;
    CSqliteStatement sweepFailures;
    CSqliteStatement endSweep;
  };
  std::unique_ptr<Statements> statements_;
};

}  // namespace zt_transfers
