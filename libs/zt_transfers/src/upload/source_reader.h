#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "hash/md5.h"
#include "os/unique_fd.h"

namespace zt_transfers {

// A piece of a file, as read.
struct SourceChunk {
  std::unique_ptr<char[]> data;
  std::size_t size = 0;
  bool last = false;
  std::string md5;  // of the whole file; with the last chunk, if asked for
};

// Reads a file from its beginning to its end, once, and hashes it on the way. The last chunk is
// given out only if the file is still what it was at the beginning, so that a mixture of two
// versions is never sent whole.
//
// Thread: one at a time; its calls block.
class CSourceReader {
 public:
  static constexpr std::size_t kChunk = std::size_t{512} * 1024;  // bytes

  CSourceReader(std::string path, bool hash) : path_(std::move(path)), wantsHash_(hash) {}

  // Both give a text that says what is wrong, or nothing when all is well.
  std::optional<std::string> open();
  std::optional<std::string> readNext(SourceChunk& chunk);

  std::uint64_t size() const { return size_; }

 private:
  std::optional<std::string> changedSinceOpen() const;

  const std::string path_;
  const bool wantsHash_;
  CUniqueFd file_;
  std::optional<CMd5> md5_;
  struct stat opened_ {};
  std::uint64_t size_ = 0;
  std::uint64_t offset_ = 0;
};

}  // namespace zt_transfers
