#include "download/content_hash.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>
#include <utility>

namespace zt_transfers {
namespace {

// Per step of the queue, so that an end does not have to wait long.
constexpr std::uint64_t kMaxReadBack = 16ULL * 1024 * 1024;
constexpr std::uint64_t kReadBack = 256ULL * 1024;  // bytes at once; they fit into the core's cache

}  // namespace

void CContentHash::add(const char* data, std::size_t size) {
  md5_.add(data, size);
  position_ += size;
}

void CContentHash::readBack(IFileOps& ops, int file, std::uint64_t end) {
  if (position_ >= end) {
    return;
  }
  const std::unique_ptr<char[]> buffer(new char[kReadBack]);
  while (position_ < end) {
    const auto wanted = static_cast<std::size_t>(std::min(kReadBack, end - position_));
    const ssize_t got = ops.read(file, buffer.get(), wanted, position_);
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      throw std::system_error(got == 0 ? EIO : errno, std::generic_category(),
                              "cannot read back the partial file");
    }
    add(buffer.get(), static_cast<std::size_t>(got));
  }
}

bool CHashQueue::add(std::vector<Chunk>& chunks, std::uint64_t end) {
  const CMutexLock lock(mutex_);
  if (closed_) {
    return false;
  }
  for (Chunk& chunk : chunks) {
    if (chunk.offset == queued_ && !readsBack()) {
      queued_ = chunk.end();
      waiting_.push_back({std::move(chunk), queued_});
    }
  }
  std::erase_if(chunks, [](const Chunk& chunk) { return chunk.data == nullptr; });
  if (end > queued_ && mayReadBack_) {
    queued_ = end;
    if (readsBack()) {
      waiting_.back().end = end;
    } else {
      waiting_.push_back({{}, end});
    }
  }
  return !waiting_.empty() && !std::exchange(running_, true);
}

// Returns everything that is in memory, or one range that is to be read back.
CHashQueue::Entries CHashQueue::take() {
  const CMutexLock lock(mutex_);
  Entries entries;
  while (!waiting_.empty() && waiting_.front().inMemory()) {
    entries.push_back(std::move(waiting_.front()));
    waiting_.pop_front();
  }
  if (entries.empty() && !waiting_.empty()) {
    const std::uint64_t end = waiting_.front().end;
    entries.push_back({{}, std::min(end, taken_ + kMaxReadBack)});
    if (entries.back().end == end) {
      waiting_.pop_front();
    }
  }
  if (!entries.empty()) {
    taken_ = entries.back().end;
  }
  return entries;
}

bool CHashQueue::done() {
  const CMutexLock lock(mutex_);
  running_ = !waiting_.empty();
  return running_;
}

bool CHashQueue::idle() const {
  const CMutexLock lock(mutex_);
  return !running_ && waiting_.empty();
}

std::list<CHashQueue::Entry> CHashQueue::clear() {
  const CMutexLock lock(mutex_);
  return std::exchange(waiting_, {});
}

void CHashQueue::close() {
  const CMutexLock lock(mutex_);
  closed_ = true;
  waiting_.clear();
}

void CHashQueue::endReadBack() {
  const CMutexLock lock(mutex_);
  mayReadBack_ = false;
  if (readsBack()) {
    waiting_.pop_back();
    queued_ = waiting_.empty() ? taken_ : waiting_.back().end;
  }
}

void CHashQueue::restart(std::uint64_t position) {
  const CMutexLock lock(mutex_);
  waiting_.clear();
  queued_ = position;
  taken_ = position;
}

}  // namespace zt_transfers
