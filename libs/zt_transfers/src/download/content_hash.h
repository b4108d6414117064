#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "base/file_ops.h"
#include "base/mutex.h"
#include "download/chunk_pool.h"
#include "hash/md5.h"

namespace zt_transfers {

// The MD5 digest of a file that is being written, computed in file order. Bytes that are not added
// from memory are read back from the file.
//
// Thread: one at a time.
class CContentHash {
 public:
  // Bytes from the beginning of the file that the digest covers.
  std::uint64_t position() const { return position_; }
  // The bytes at `position`.
  void add(const char* data, std::size_t size);
  // The bytes up to `end`, read from the open file. Throws std::system_error.
  void readBack(IFileOps& ops, int file, std::uint64_t end);
  // In lower-case hexadecimal. Ends the computation.
  std::string finish() { return md5_.finish(); }

 private:
  CMd5 md5_;
  std::uint64_t position_ = 0;
};

// Queue of written ranges waiting to be hashed, in file order. Bytes that were written in that
// order wait in memory. All others are read back, and none waits in memory behind those, because
// that would hold up the memory.
//
// Thread: any.
class CHashQueue {
 public:
  // The bytes up to `end` that follow the previous entry; without a chunk they are read back.
  struct Entry {
    Chunk chunk;
    std::uint64_t end = 0;

    bool inMemory() const { return chunk.data != nullptr; }
  };
  using Entries = std::vector<Entry>;

  // The chunks were written, and the file has no gap up to `end`. Takes those that it keeps out of
  // `chunks`. True when a hash task must be started.
  bool add(std::vector<Chunk>& chunks, std::uint64_t end);
  // The entries to hash now. Call `done` once they are hashed: true when more are waiting, else the
  // hash task ends.
  Entries take();
  bool done();

  // No hash task is running or needed.
  bool idle() const;
  // Drops waiting entries; a running task goes on. `close`: no entry is added any more.
  // `endReadBack`: only those that are read back are dropped and not added any more.
  std::list<Entry> clear();
  void close();
  void endReadBack();
  // Starts at this byte. The queue must be idle.
  void restart(std::uint64_t position);

 private:
  bool readsBack() const REQUIRES(mutex_) {
    return !waiting_.empty() && !waiting_.back().inMemory();
  }

  mutable CMutex mutex_;
  std::list<Entry> waiting_ GUARDED_BY(mutex_);
  std::uint64_t queued_ GUARDED_BY(mutex_) = 0;  // up to here bytes are hashed or waiting
  std::uint64_t taken_ GUARDED_BY(mutex_) = 0;   // up to here bytes are hashed or being hashed
  bool running_ GUARDED_BY(mutex_) = false;      // a hash task
  bool closed_ GUARDED_BY(mutex_) = false;
  bool mayReadBack_ GUARDED_BY(mutex_) = true;
};

}  // namespace zt_transfers
