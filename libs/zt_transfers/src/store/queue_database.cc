#include "store/queue_database.h"

#include <sys/stat.h>

#include <algorithm>

#include "engine/failure_log.h"
#include "store/packed_resume.h"
#include "store/packing.h"

namespace zt_transfers {
namespace {

// Larger databases are not checked when they are opened; damaged pages show when they are read.
constexpr std::int64_t kMaxChecked = 32LL * 1024 * 1024;  // bytes

std::int64_t rowOf(FileRef file) {
  return (std::int64_t{file.groupId} << 32) | std::int64_t{file.index};
}

FileRef fileOf(std::int64_t row) {
  return {static_cast<std::int32_t>(row >> 32), static_cast<std::uint32_t>(row)};
}

enum KeptState : std::int64_t { kToDo = 0, kDone = 1, kGivenUp = 2 };

std::int64_t kept(FilePhase phase) {
  switch (phase) {
    case FilePhase::kCompleted:
      return kDone;
    case FilePhase::kFailed:
      return kGivenUp;
    default:
      return kToDo;
  }
}

FilePhase phaseOf(std::int64_t state) {
  switch (state) {
    case kDone:
      return FilePhase::kCompleted;
    case kGivenUp:
      return FilePhase::kFailed;
    default:
      return FilePhase::kWaiting;
  }
}

std::string packed(const std::wstring& text) {
  CPacker packer;
  for (const wchar_t character : text) {
    packer.number(static_cast<std::uint32_t>(character));
  }
  return packer.bytes();
}

std::wstring unpackedText(std::string_view bytes) {
  CUnpacker unpacker(bytes);
  std::wstring text;
  while (unpacker.left() != 0) {
    text.push_back(static_cast<wchar_t>(unpacker.number()));
  }
  return text;
}

StoredGroup groupOf(const CSqliteStatement& row) {
  StoredGroup group;
  group.identity.id = static_cast<std::int32_t>(row.number(0));
  group.identity.bucketId = row.bytes(1);
  group.identity.bucketType = row.bytes(2);
  group.identity.token = row.bytes(3);
  group.identity.tokenExpires = static_cast<std::uint64_t>(row.number(4));
  group.identity.folder = unpackedText(row.bytes(5));
  group.paused = row.number(6) != 0;
  group.marked = row.number(7) != 0;
  return group;
}

void bindSize(CSqliteStatement& statement, int parameter, const StoredState& state) {
  if (state.sizeKnown) {
    statement.bind(parameter, static_cast<std::int64_t>(state.size));
  } else {
    statement.bindNull(parameter);
  }
}

}  // namespace

CQueueDatabase::CQueueDatabase(const std::string& path, std::chrono::milliseconds patience,
                               const std::vector<Migration>& migrations)
    : connection_(path, patience) {
  try {
    // No other program reads it, so the index of its log can stay in memory.
    connection_.execute("PRAGMA locking_mode = EXCLUSIVE");
    if (connection_.number("PRAGMA page_count") == 0) {
      connection_.execute("PRAGMA auto_vacuum = INCREMENTAL");  // before the first table
    }
    check(path);
    if (!migrate(connection_, migrations)) {
      throw CUnusable("it is of a newer version or of another program");
    }
    connection_.execute("PRAGMA journal_mode = WAL");
    connection_.execute("PRAGMA synchronous = FULL");  // what is committed survives a power cut
    connection_.execute("PRAGMA fullfsync = ON");      // where fsync leaves the drive's cache alone
    connection_.execute("PRAGMA wal_autocheckpoint = 4000");      // pages
    connection_.execute("PRAGMA journal_size_limit = 33554432");  // bytes
    statements_ = std::make_unique<Statements>(connection_.get());
  } catch (const CSqliteError& error) {
    if (error.isDamage() || (error.code() & 0xFF) == SQLITE_ERROR) {
      throw CUnusable(error.what());
    }
    throw;
  }
}

void CQueueDatabase::check(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || status.st_size > kMaxChecked) {
    return;
  }
  const std::string verdict = connection_.text("PRAGMA quick_check(1)");
  if (verdict != "ok") {
    throw CUnusable(verdict);
  }
}

CQueueDatabase::Statements::Statements(sqlite3* connection)
    : groups(connection,
             "SELECT id, bucket_id, bucket_type, token, token_expires, folder, paused, marked "
             "FROM groups ORDER BY id"),
      files(connection,
            "SELECT id, state, size, file_id FROM files WHERE id BETWEEN ? AND ? ORDER BY id"),
      lastGroup(connection, "SELECT seq FROM sqlite_sequence WHERE name = 'groups'"),
      salt(connection, "SELECT value FROM salt"),
      saveGroup(connection, "INSERT OR REPLACE INTO groups VALUES(?, ?, ?, ?, ?, ?, ?, ?)"),
      removeGroup(connection, "DELETE FROM groups WHERE id = ?"),
      noteRemoved(connection, "INSERT OR REPLACE INTO removed_groups VALUES(?)"),
      addFile(connection, "INSERT OR REPLACE INTO files VALUES(?, ?, ?, ?)"),
      setState(connection, "UPDATE files SET state = ?2, size = ?3 WHERE id = ?1"),
      removeFile(connection, "DELETE FROM files WHERE id = ?"),
      saveSpec(connection, "INSERT OR REPLACE INTO specs VALUES(?, ?)"),
      removeSpec(connection, "DELETE FROM specs WHERE id = ?"),
      specs(connection, "SELECT id, spec FROM specs WHERE id >= ? AND id < ? ORDER BY id"),
      saveResume(connection, "INSERT OR REPLACE INTO resumes VALUES(?, ?)"),
      removeResume(connection, "DELETE FROM resumes WHERE id = ?"),
      resumes(connection, "SELECT id, resume FROM resumes WHERE id BETWEEN ? AND ? ORDER BY id"),
      saveFailure(connection, "INSERT OR REPLACE INTO failures VALUES(?, ?, ?)"),
      removeFailure(connection, "DELETE FROM failures WHERE id = ?"),
      failures(connection,
               "SELECT id, code, reason FROM (SELECT * FROM failures WHERE id BETWEEN ? AND ? "
               "AND (SELECT state FROM files WHERE files.id = failures.id) = 2 "
               "ORDER BY id DESC LIMIT ?) ORDER BY id"),
      saveOrphan(connection, "INSERT OR REPLACE INTO leftovers VALUES(?, ?)"),
      removeOrphan(connection, "DELETE FROM leftovers WHERE id = ?"),
      orphans(connection, "SELECT id, leftover FROM leftovers ORDER BY id"),
      removedGroup(connection, "SELECT id FROM removed_groups LIMIT 1"),
      sweepFiles(connection,
                 "DELETE FROM files WHERE id IN "
                 "(SELECT id FROM files WHERE id BETWEEN ? AND ? LIMIT 4000)"),
      sweepSpecs(connection,
                 "DELETE FROM specs WHERE id IN "
                 "(SELECT id FROM specs WHERE id BETWEEN ? AND ? LIMIT 4000)"),
      sweepResumes(connection,
                   "DELETE FROM resumes WHERE id IN "
                   "(SELECT id FROM resumes WHERE id BETWEEN ? AND ? LIMIT 4000)"),
      sweepFailures(connection,
                    "DELETE FROM failures WHERE id IN "
                    "(SELECT id FROM failures WHERE id BETWEEN ? AND ? LIMIT 4000)"),
      endSweep(connection, "DELETE FROM removed_groups WHERE id = ?") {}

void CQueueDatabase::read(const Reader& reader) {
  while (statements_->groups.step()) {
    const StoredGroup group = groupOf(statements_->groups);
    reader.group(group);
    const std::int32_t id = group.identity.id;
    CSqliteStatement& files = statements_->files;
    files.bind(1, rowOf({id, 0})).bind(2, rowOf({id, 0xFFFFFFFF}));
    while (files.step()) {
      StoredState state;
      state.phase = phaseOf(files.number(1));
      state.sizeKnown = !files.isNull(2);
      state.size = static_cast<std::uint64_t>(files.number(2));
      reader.file(fileOf(files.number(0)), state, files.bytes(3));
    }
    CSqliteStatement& resumes = statements_->resumes;
    resumes.bind(1, rowOf({id, 0})).bind(2, rowOf({id, 0xFFFFFFFF}));
    while (resumes.step()) {
      if (const auto resume = unpackedResume(resumes.bytes(1))) {
        reader.resume(fileOf(resumes.number(0)), *resume);
      }
    }
    readFailures(id, reader);
  }
  readOrphans(reader);
}

void CQueueDatabase::readOrphans(const Reader& reader) {
  CSqliteStatement& orphans = statements_->orphans;
  while (orphans.step()) {
    if (const auto orphan = unpackedOrphan(orphans.bytes(1))) {
      reader.orphan(static_cast<OrphanId>(orphans.number(0)), *orphan);
    }
  }
}

void CQueueDatabase::readFailures(std::int32_t groupId, const Reader& reader) {
  CSqliteStatement& failures = statements_->failures;
  failures.bind(1, rowOf({groupId, 0})).bind(2, rowOf({groupId, 0xFFFFFFFF}));
  failures.bind(3, std::int64_t{CFailureLog::kMaxOfAGroup});
  while (failures.step()) {
    reader.failure(fileOf(failures.number(0)),
                   {std::string(failures.bytes(1)), std::string(failures.bytes(2))});
  }
}

std::int32_t CQueueDatabase::lastGroupId() {
  std::int64_t last = 0;
  while (statements_->lastGroup.step()) {
    last = statements_->lastGroup.number(0);
  }
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(last, 0, INT32_MAX));
}

std::string CQueueDatabase::salt() {
  std::string salt;
  while (statements_->salt.step()) {
    salt = statements_->salt.bytes(0);
  }
  if (salt.empty()) {
    throw CUnusable("it has no salt");
  }
  return salt;
}

void CQueueDatabase::write(const QueueBatch& batch) {
  CSqliteTransaction transaction(connection_);
  for (const QueueWrite& one : batch.writes) {
    write(one);
  }
  transaction.commit();
}

void CQueueDatabase::write(const QueueWrite& write) {
  const FileRef file = write.change.file;
  const std::int64_t row = rowOf(file);
  switch (write.change.kind) {
    case QueueChange::Kind::kGroup:
      writeGroup(*write.group);
      break;
    case QueueChange::Kind::kGroupRemoved:
      statements_->removeGroup.bind(1, file.groupId).run();
      statements_->noteRemoved.bind(1, file.groupId).run();
      break;
    case QueueChange::Kind::kFile:
      statements_->addFile.bind(1, row).bind(2, kept(write.change.state.phase));
      bindSize(statements_->addFile, 3, write.change.state);
      statements_->addFile.bindBytes(4, write.fileId).run();
      [[fallthrough]];
    case QueueChange::Kind::kSpec:
      if (!write.spec.empty()) {
        statements_->saveSpec.bind(1, row).bindBytes(2, write.spec).run();
      }
      break;
    case QueueChange::Kind::kState:
      writeState(row, write);
      break;
    case QueueChange::Kind::kResume:
      writeResume(row, write.resume);
      break;
    case QueueChange::Kind::kFailure:
      statements_->saveFailure.bind(1, row)
          .bindBytes(2, write.failure->code)
          .bindBytes(3, write.failure->reason)
          .run();
      break;
    case QueueChange::Kind::kFileRemoved:
      statements_->removeFile.bind(1, row).run();
      statements_->removeSpec.bind(1, row).run();
      statements_->removeResume.bind(1, row).run();
      statements_->removeFailure.bind(1, row).run();
      break;
    case QueueChange::Kind::kOrphan:
      writeOrphan(file.index, write.orphan);
      break;
  }
}

void CQueueDatabase::writeGroup(const StoredGroup& group) {
  const std::string folder = packed(group.identity.folder);
  statements_->saveGroup.bind(1, group.identity.id)
      .bindBytes(2, group.identity.bucketId)
      .bindBytes(3, group.identity.bucketType)
      .bindBytes(4, group.identity.token)
      .bind(5, static_cast<std::int64_t>(group.identity.tokenExpires))
      .bindBytes(6, folder)
      .bind(7, group.paused ? 1 : 0)
      .bind(8, group.marked ? 1 : 0)
      .run();
}

void CQueueDatabase::writeState(std::int64_t id, const QueueWrite& write) {
  const StoredState& state = write.change.state;
  statements_->setState.bind(1, id).bind(2, kept(state.phase));
  bindSize(statements_->setState, 3, state);
  statements_->setState.run();
  if (write.over) {
    statements_->removeSpec.bind(1, id).run();
    statements_->removeFailure.bind(1, id).run();
  }
}

void CQueueDatabase::writeResume(std::int64_t id, std::string_view resume) {
  if (resume.empty()) {
    statements_->removeResume.bind(1, id).run();
  } else {
    statements_->saveResume.bind(1, id).bindBytes(2, resume).run();
  }
}

void CQueueDatabase::writeOrphan(OrphanId id, std::string_view orphan) {
  if (orphan.empty()) {
    statements_->removeOrphan.bind(1, id).run();
  } else {
    statements_->saveOrphan.bind(1, id).bindBytes(2, orphan).run();
  }
}

void CQueueDatabase::readSpecs(std::int32_t groupId, std::uint32_t from, std::uint32_t to,
                               const std::function<void(FileRef, std::string_view)>& use) {
  CSqliteStatement& specs = statements_->specs;
  specs.bind(1, rowOf({groupId, from})).bind(2, rowOf({groupId, to}));
  while (specs.step()) {
    use(fileOf(specs.number(0)), specs.bytes(1));
  }
}

bool CQueueDatabase::sweep() {
  CSqliteStatement& removed = statements_->removedGroup;
  if (!removed.step()) {
    return false;
  }
  const auto id = static_cast<std::int32_t>(removed.number(0));
  removed.reset();
  CSqliteTransaction transaction(connection_);
  int swept = 0;
  for (CSqliteStatement* statement : {&statements_->sweepFiles, &statements_->sweepSpecs,
                                      &statements_->sweepResumes, &statements_->sweepFailures}) {
    statement->bind(1, rowOf({id, 0})).bind(2, rowOf({id, 0xFFFFFFFF})).run();
    swept += sqlite3_changes(connection_.get());
  }
  if (swept == 0) {
    statements_->endSweep.bind(1, id).run();
  }
  transaction.commit();
  connection_.execute("PRAGMA incremental_vacuum(4000)");  // shrinks the file
  return true;
}

}  // namespace zt_transfers
