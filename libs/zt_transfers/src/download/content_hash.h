#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "base/mutex.h"
#include "download/chunk_pool.h"
#include "hash/md5.h"

namespace zt_transfers {

// The MD5 digest of a file that is being written: computed in the order of its bytes, whatever the
// order in which they come. What is not given as it comes is read back from the file.
//
// Thread: one at a time.
class CContentHash {
 public:
  // So many bytes from the beginning are in it.
  std::uint64_t position() const { return position_; }
  // The bytes at `position`.
  void add(const char* data, std::size_t size);
  // Those up to `end`, from the open file. Throws std::system_error.
  void readBack(int file, std::uint64_t end);
  // In lower-case hexadecimal. Ends the computation.
  std::string finish() { return md5_.finish(); }

 private:
  CMd5 md5_;
  std::uint64_t position_ = 0;
};

// What of a file is written and waits to be hashed, in the file's order. What is written in that
// order waits in memory; all else is read back, and nothing waits in memory behind that, or the
// memory would be held up.
//
// Thread: any.
class CHashQueue {
 public:
  // Bytes up to `end` that follow those before; without a chunk they are read back.
  struct Piece {
    Chunk chunk;
    std::uint64_t end = 0;

    bool inMemory() const { return chunk.data != nullptr; }
  };
  using Pieces = std::vector<Piece>;

  // The chunks were written, and up to `end` there is no gap in the file. Takes what it keeps out
  // of `chunks`. True when there is something to hash and nobody at it.
  bool add(std::vector<Chunk>& chunks, std::uint64_t end);
  // What is to be hashed now. `done` after each, once it is hashed: true when more has come, else
  // nobody is at it any more.
  Pieces take();
  bool done();

  // Nobody is at it, and nobody needs to be.
  bool idle() const;
  // Gives up what waits; what is at work goes on. `close`: nothing is added any more.
  std::list<Piece> clear();
  void close();
  // For another version, from the first byte; it must be idle.
  void restart();

 private:
  bool readsBack() const REQUIRES(mutex_) {
    return !waiting_.empty() && !waiting_.back().inMemory();
  }

  mutable CMutex mutex_;
  std::list<Piece> waiting_ GUARDED_BY(mutex_);
  std::uint64_t lined_ GUARDED_BY(mutex_) = 0;  // up to here it is hashed or waits
  std::uint64_t taken_ GUARDED_BY(mutex_) = 0;  // up to here it is hashed, or somebody is at it
  bool atWork_ GUARDED_BY(mutex_) = false;
  bool closed_ GUARDED_BY(mutex_) = false;
};

}  // namespace zt_transfers
