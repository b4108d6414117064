#include "recording_disk.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <mutex>

namespace zt_transfers::test {
namespace {

struct OpenFile {
  std::string name;
  const sqlite3_io_methods* real = nullptr;
};

sqlite3_vfs* realFiles = nullptr;
sqlite3_vfs recordingFiles;

std::mutex mutex;
// Guarded by mutex.
std::vector<DiskOperation> recorded;
std::map<sqlite3_file*, OpenFile> openFiles;
std::map<const sqlite3_io_methods*, std::unique_ptr<sqlite3_io_methods>> recordingMethods;

std::string nameOf(const char* path) {
  return std::filesystem::path(path).filename().string();
}

const sqlite3_io_methods& realOf(sqlite3_file* file) {
  const std::lock_guard lock(mutex);
  return *openFiles.at(file).real;
}

int recordIf(int code, sqlite3_file* file, DiskOperation operation) {
  if (code == SQLITE_OK) {
    const std::lock_guard lock(mutex);
    operation.file = openFiles.at(file).name;
    recorded.push_back(std::move(operation));
  }
  return code;
}

int write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at) {
  return recordIf(realOf(file).xWrite(file, bytes, count, at), file,
                  {.kind = DiskOperation::Kind::kWrite,
                   .file = {},
                   .at = at,
                   .bytes = {static_cast<const char*>(bytes), static_cast<std::size_t>(count)}});
}

int truncate(sqlite3_file* file, sqlite3_int64 size) {
  return recordIf(realOf(file).xTruncate(file, size), file,
                  {.kind = DiskOperation::Kind::kTruncate, .file = {}, .at = size});
}

int sync(sqlite3_file* file, int flags) {
  return recordIf(realOf(file).xSync(file, flags), file,
                  {.kind = DiskOperation::Kind::kSync, .file = {}});
}

int close(sqlite3_file* file) {
  const int code = realOf(file).xClose(file);
  const std::lock_guard lock(mutex);
  openFiles.erase(file);
  return code;
}

int openFile(sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* outFlags) {
  const int code = realFiles->xOpen(realFiles, path, file, flags, outFlags);
  if (code != SQLITE_OK || path == nullptr) {
    return code;
  }
  const std::lock_guard lock(mutex);
  const sqlite3_io_methods* real = file->pMethods;
  auto& methods = recordingMethods[real];
  if (!methods) {
    methods = std::make_unique<sqlite3_io_methods>(*real);
    methods->xWrite = write;
    methods->xTruncate = truncate;
    methods->xSync = sync;
    methods->xClose = close;
  }
  file->pMethods = methods.get();
  openFiles[file] = {nameOf(path), real};
  return code;
}

int deleteFile(sqlite3_vfs*, const char* path, int syncFolder) {
  const int code = realFiles->xDelete(realFiles, path, syncFolder);
  if (code == SQLITE_OK) {
    const std::lock_guard lock(mutex);
    recorded.push_back(
        {.kind = DiskOperation::Kind::kDelete, .file = nameOf(path), .at = syncFolder});
  }
  return code;
}

}  // namespace

CRecordingDisk::CRecordingDisk() {
  recorded.clear();
  realFiles = sqlite3_vfs_find(nullptr);
  recordingFiles = *realFiles;
  recordingFiles.zName = "recording-disk";
  recordingFiles.xOpen = openFile;
  recordingFiles.xDelete = deleteFile;
  sqlite3_vfs_register(&recordingFiles, 1);
}

CRecordingDisk::~CRecordingDisk() {
  sqlite3_vfs_unregister(&recordingFiles);
  sqlite3_vfs_register(realFiles, 1);
}

std::vector<DiskOperation> CRecordingDisk::operations() {
  const std::lock_guard lock(mutex);
  return recorded;
}

void CReplayedDisk::apply(const DiskOperation& operation) {
  switch (operation.kind) {
    case DiskOperation::Kind::kWrite: {
      std::string& content = written_[operation.file];
      const auto end = static_cast<std::size_t>(operation.at) + operation.bytes.size();
      content.resize(std::max(content.size(), end));
      content.replace(static_cast<std::size_t>(operation.at), operation.bytes.size(),
                      operation.bytes);
      break;
    }
    case DiskOperation::Kind::kTruncate:
      written_[operation.file].resize(static_cast<std::size_t>(operation.at));
      break;
    case DiskOperation::Kind::kSync:
      // The first sync of a new file syncs its folder, too.
      if (durable_.count(operation.file) == 0 || deleted_.count(operation.file) != 0) {
        for (const std::string& file : deleted_) {
          durable_.erase(file);
        }
        deleted_.clear();
      }
      durable_[operation.file] = written_[operation.file];
      break;
    case DiskOperation::Kind::kDelete:
      written_.erase(operation.file);
      deleted_.insert(operation.file);
      if (operation.at != 0) {
        for (const std::string& file : deleted_) {
          durable_.erase(file);
        }
        deleted_.clear();
      }
      break;
  }
}

}  // namespace zt_transfers::test
