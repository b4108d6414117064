#include "osr/input/bytes_write_handler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace client {
namespace {

constexpr uint64_t kMaxSize = std::numeric_limits<int64_t>::max();

bool exceedsMaxSize(std::size_t size, std::size_t count, uint64_t offset) {
  return size != 0 && count > (kMaxSize - offset) / size;
}

}  // namespace

BytesWriteHandler::BytesWriteHandler(std::size_t grow)
    : grow_(grow),
      data_(static_cast<unsigned char*>(std::malloc(grow))),
      // If the allocation fails, the first write retries it and reports the failure.
      capacity_(data_ != nullptr ? static_cast<int64_t>(grow) : 0) {}

BytesWriteHandler::~BytesWriteHandler() {
  std::free(data_);
}

std::size_t BytesWriteHandler::Write(const void* data, std::size_t size, std::size_t count) {
  const std::lock_guard lock(lock_);
  if (exceedsMaxSize(size, count, static_cast<uint64_t>(offset_))) {
    return 0;
  }
  const std::size_t bytes = size * count;
  if (offset_ + static_cast<int64_t>(bytes) >= capacity_ && !grow(bytes)) {
    return 0;
  }
  if (bytes > 0) {
    std::memcpy(data_ + offset_, data, bytes);
  }
  offset_ += static_cast<int64_t>(bytes);
  return count;
}

bool BytesWriteHandler::grow(std::size_t bytes) {
  const uint64_t growth = std::max<uint64_t>(grow_, bytes);
  if (growth == 0) {
    return true;
  }
  const auto capacity = static_cast<uint64_t>(capacity_);
  if (growth > kMaxSize - capacity) {
    return false;
  }
  void* const larger = std::realloc(data_, capacity + growth);
  if (larger == nullptr) {
    return false;
  }
  data_ = static_cast<unsigned char*>(larger);
  capacity_ = static_cast<int64_t>(capacity + growth);
  return true;
}

int BytesWriteHandler::Seek(int64_t offset, int whence) {
  constexpr int kRefused = -1;
  const std::lock_guard lock(lock_);
  int64_t position = 0;
  switch (whence) {
    case SEEK_SET:
      position = offset;
      break;
    case SEEK_CUR:
      if (offset > capacity_ - offset_ || offset < -offset_) {
        return kRefused;
      }
      position = offset_ + offset;
      break;
    case SEEK_END:
      // Both signs count back from the end.
      if (offset > capacity_ || offset < -capacity_) {
        return kRefused;
      }
      position = capacity_ - std::abs(offset);
      break;
    default:
      return kRefused;
  }
  if (position < 0 || position > capacity_) {
    return kRefused;
  }
  offset_ = position;
  return 0;
}

int64_t BytesWriteHandler::Tell() {
  const std::lock_guard lock(lock_);
  return offset_;
}

int BytesWriteHandler::Flush() {
  return 0;
}

const void* BytesWriteHandler::data() const {
  const std::lock_guard lock(lock_);
  return data_;
}

int64_t BytesWriteHandler::size() const {
  const std::lock_guard lock(lock_);
  return offset_;
}

}  // namespace client
