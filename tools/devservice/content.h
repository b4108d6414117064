#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "devservice/file_io.h"

namespace zantrio::devservice {

// Bytes that can be read from anywhere. Thread: one at a time.
class IContent {
 public:
  virtual ~IContent() = default;

  // Reads up to the buffer's size at an offset; returns the number of bytes, 0 at the end.
  virtual std::size_t readAt(std::span<char> buffer, std::uint64_t offset) const = 0;
};

// A file on disk.
class CFileContent : public IContent {
 public:
  explicit CFileContent(CFile file) : file_(std::move(file)) {}

  std::size_t readAt(std::span<char> buffer, std::uint64_t offset) const override {
    return file_.readAt(buffer, offset);
  }

 private:
  CFile file_;
};

}  // namespace zantrio::devservice
