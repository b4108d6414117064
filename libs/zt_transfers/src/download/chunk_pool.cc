#include "download/chunk_pool.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace zt_transfers {
namespace {

constexpr std::size_t kSmallest = std::size_t{4} * 1024;
constexpr std::size_t kMaxKept = 32 * CChunkPool::kLargest;

}  // namespace

Chunk CChunkPool::take(std::uint64_t wanted) {
  const auto size = std::clamp<std::uint64_t>(wanted, kSmallest, kLargest);
  const auto capacity = static_cast<std::size_t>(std::bit_ceil(size));
  {
    const CMutexLock lock(mutex_);
    std::vector<Chunk>& spare = spare_[capacity];
    if (!spare.empty()) {
      Chunk chunk = std::move(spare.back());
      spare.pop_back();
      kept_ -= capacity;
      return chunk;
    }
  }
  Chunk chunk;
  chunk.capacity = capacity;
  chunk.data.reset(new char[capacity]);
  return chunk;
}

void CChunkPool::giveBack(Chunk chunk) {
  const CMutexLock lock(mutex_);
  if (!chunk.data || kept_ + chunk.capacity > kMaxKept) {
    return;
  }
  chunk.size = 0;
  kept_ += chunk.capacity;
  spare_[chunk.capacity].push_back(std::move(chunk));
}

}  // namespace zt_transfers
