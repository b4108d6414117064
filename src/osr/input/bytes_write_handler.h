#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>

#include "include/cef_stream.h"

namespace client {

// Collects bytes in a growing buffer. Positions are checked against the capacity, not against the
// bytes written. Thread: any.
class BytesWriteHandler : public CefWriteHandler {
 public:
  // `grow`: the initial capacity, and the minimum by which the buffer grows.
  explicit BytesWriteHandler(std::size_t grow);
  BytesWriteHandler(const BytesWriteHandler&) = delete;
  BytesWriteHandler& operator=(const BytesWriteHandler&) = delete;

  // Returns 0 and writes nothing if memory is exhausted.
  std::size_t Write(const void* data, std::size_t size, std::size_t count) override;
  int Seek(int64_t offset, int whence) override;
  int64_t Tell() override;
  int Flush() override;
  bool MayBlock() override { return false; }

  // The bytes before the position. Owned by this object and valid until the next Write.
  const void* data() const;
  int64_t size() const;

 protected:
  ~BytesWriteHandler() override;

 private:
  bool grow(std::size_t bytes);

  const uint64_t grow_;
  unsigned char* data_;
  int64_t capacity_;
  int64_t offset_ = 0;
  mutable std::recursive_mutex lock_;

  IMPLEMENT_REFCOUNTING(BytesWriteHandler);
};

}  // namespace client
