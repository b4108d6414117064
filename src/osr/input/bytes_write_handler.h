#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>

#include "include/cef_stream.h"

namespace client {

// Collects bytes in memory that grows as needed. Positions are checked against what is allocated,
// not against what was written. Thread: any.
class BytesWriteHandler : public CefWriteHandler {
 public:
  // `grow` bytes are allocated at once, and at least as many each time that more are needed.
  explicit BytesWriteHandler(std::size_t grow);
  BytesWriteHandler(const BytesWriteHandler&) = delete;
  BytesWriteHandler& operator=(const BytesWriteHandler&) = delete;

  // 0, with nothing written, when there is no memory for it.
  std::size_t Write(const void* data, std::size_t size, std::size_t count) override;
  int Seek(int64_t offset, int whence) override;
  int64_t Tell() override;
  int Flush() override;
  bool MayBlock() override { return false; }

  // What lies before the position. Owned by this object and valid until the next Write.
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
