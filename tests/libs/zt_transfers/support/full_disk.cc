#include "full_disk.h"

#include <sqlite3.h>

namespace zt_transfers::test {
namespace {

std::atomic<bool> isFull{false};
std::atomic<int> refused{0};

sqlite3_vfs* realFiles = nullptr;
sqlite3_vfs fullFiles;

// How SQLite's own files work. The database and its log lock in different ways.
const sqlite3_io_methods* realDatabase = nullptr;
const sqlite3_io_methods* realLog = nullptr;
sqlite3_io_methods fullDatabase;
sqlite3_io_methods fullLog;

int write(const sqlite3_io_methods* real, sqlite3_file* file, const void* bytes, int count,
          sqlite3_int64 at) {
  if (isFull) {
    ++refused;
    return SQLITE_FULL;
  }
  return real->xWrite(file, bytes, count, at);
}

int writeDatabase(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at) {
  return write(realDatabase, file, bytes, count, at);
}

int writeLog(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at) {
  return write(realLog, file, bytes, count, at);
}

int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  const int code = realFiles->xOpen(realFiles, name, file, flags, outFlags);
  if (code != SQLITE_OK) {
    return code;
  }
  if ((flags & SQLITE_OPEN_MAIN_DB) != 0) {
    realDatabase = file->pMethods;
    fullDatabase = *realDatabase;
    fullDatabase.xWrite = writeDatabase;
    file->pMethods = &fullDatabase;
  } else if ((flags & (SQLITE_OPEN_WAL | SQLITE_OPEN_MAIN_JOURNAL)) != 0) {
    realLog = file->pMethods;
    fullLog = *realLog;
    fullLog.xWrite = writeLog;
    file->pMethods = &fullLog;
  }
  return code;
}

}  // namespace

CFullDisk::CFullDisk() {
  isFull = false;
  refused = 0;
  realFiles = sqlite3_vfs_find(nullptr);
  fullFiles = *realFiles;
  fullFiles.zName = "full-disk";
  fullFiles.xOpen = open;
  sqlite3_vfs_register(&fullFiles, 1);
}

CFullDisk::~CFullDisk() {
  sqlite3_vfs_unregister(&fullFiles);
  sqlite3_vfs_register(realFiles, 1);
}

void CFullDisk::setFull(bool full) {
  isFull = full;
}

int CFullDisk::refusals() const {
  return refused;
}

}  // namespace zt_transfers::test
