#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "base/mutex.h"

namespace zt_transfers {

// Received bytes of a file on their way to the disk.
struct Chunk {
  std::unique_ptr<char[]> data;
  std::size_t capacity = 0;
  std::size_t size = 0;
  std::uint64_t offset = 0;

  std::uint64_t end() const { return offset + size; }
};

// Reuses chunks, across files: memory that is new to the process costs more than filling it.
//
// Thread: any.
class CChunkPool {
 public:
  static constexpr std::size_t kLargest = std::size_t{256} * 1024;  // bytes of a chunk

  // An empty chunk for about `wanted` bytes.
  Chunk take(std::uint64_t wanted);
  void giveBack(Chunk chunk);

 private:
  CMutex mutex_;
  std::map<std::size_t, std::vector<Chunk>> spare_ GUARDED_BY(mutex_);  // by capacity
  std::size_t kept_ GUARDED_BY(mutex_) = 0;                             // bytes
};

}  // namespace zt_transfers
