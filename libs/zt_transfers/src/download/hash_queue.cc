#include "download/hash_queue.h"

#include <algorithm>
#include <utility>

namespace zt_transfers {
namespace {

// At once, so that an end does not have to wait for it.
constexpr std::uint64_t kMaxReadBack = 16ULL * 1024 * 1024;

}  // namespace

bool CHashQueue::add(std::vector<Chunk>& chunks, std::uint64_t end) {
  const std::lock_guard lock(mutex_);
  if (closed_) {
    return false;
  }
  for (Chunk& chunk : chunks) {
    if (chunk.offset == lined_ && !readsBack()) {
      lined_ = chunk.end();
      waiting_.push_back({std::move(chunk), lined_});
    }
  }
  std::erase_if(chunks, [](const Chunk& chunk) { return chunk.data == nullptr; });
  if (end > lined_) {
    lined_ = end;
    if (readsBack()) {
      waiting_.back().end = end;
    } else {
      waiting_.push_back({{}, end});
    }
  }
  return !waiting_.empty() && !std::exchange(atWork_, true);
}

// All that is in memory, or a part of what is to be read back.
CHashQueue::Pieces CHashQueue::take() {
  const std::lock_guard lock(mutex_);
  Pieces pieces;
  while (!waiting_.empty() && waiting_.front().inMemory()) {
    pieces.push_back(std::move(waiting_.front()));
    waiting_.pop_front();
  }
  if (pieces.empty() && !waiting_.empty()) {
    const std::uint64_t end = waiting_.front().end;
    pieces.push_back({{}, std::min(end, taken_ + kMaxReadBack)});
    if (pieces.back().end == end) {
      waiting_.pop_front();
    }
  }
  if (!pieces.empty()) {
    taken_ = pieces.back().end;
  }
  return pieces;
}

bool CHashQueue::done() {
  const std::lock_guard lock(mutex_);
  atWork_ = !waiting_.empty();
  return atWork_;
}

bool CHashQueue::idle() const {
  const std::lock_guard lock(mutex_);
  return !atWork_ && waiting_.empty();
}

std::list<CHashQueue::Piece> CHashQueue::clear() {
  const std::lock_guard lock(mutex_);
  return std::exchange(waiting_, {});
}

void CHashQueue::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  waiting_.clear();
}

void CHashQueue::restart() {
  const std::lock_guard lock(mutex_);
  waiting_.clear();
  lined_ = 0;
  taken_ = 0;
}

}  // namespace zt_transfers
