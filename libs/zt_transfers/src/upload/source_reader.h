#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "base/unique_fd.h"
#include "engine/failure.h"
#include "engine/upload_session.h"
#include "hash/md5.h"

namespace zt_transfers {

// What is to be read of which file.
struct ReadRequest {
  std::string path;
  bool hash = false;
  std::optional<SourceVersion> version{};  // that it must have; missing: any
  std::optional<ByteSpan> span{};          // missing: all of it
  // A file of this size or more is only opened, to see what it is.
  std::uint64_t statOnlyFrom = std::numeric_limits<std::uint64_t>::max();  // bytes
};

// A piece of a file, as read.
struct SourceChunk {
  std::unique_ptr<char[]> data;
  std::size_t size = 0;
  bool last = false;
  std::string md5;  // of all that was read; with the last chunk, if asked for
};

// Reads a file, or a span of one, from its beginning to its end, once, and hashes it on the way.
// The last chunk is given out only if the file is still what it was at the beginning, so that a
// mixture of two versions is never sent whole.
//
// Thread: one at a time; its calls block.
class CSourceReader {
 public:
  static constexpr std::size_t kChunk = std::size_t{256} * 1024;  // bytes

  explicit CSourceReader(ReadRequest readRequest) : readRequest_(std::move(readRequest)) {}

  // Both give what is wrong, or nothing when all is well.
  std::optional<Trouble> open();
  // Memory that a chunk before has brought along is used again.
  std::optional<Trouble> readNext(SourceChunk& chunk);
  // The same without blocking: false, and nothing is read, where the bytes are not in memory yet,
  // or more than reading them is to be done.
  bool readCached(SourceChunk& chunk);

  // Once it is open.
  const SourceVersion& version() const { return version_; }
  bool statOnly() const { return version_.size >= readRequest_.statOnlyFrom; }

 private:
  const ReadRequest readRequest_;
  CUniqueFd file_;
  bool inMemory_ = false;
  std::optional<CMd5> md5_;
  SourceVersion version_;
  std::uint64_t offset_ = 0;
  std::uint64_t end_ = 0;
};

}  // namespace zt_transfers
