#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/unique_fd.h"
#include "engine/attempt.h"
#include "engine/upload_session.h"
#include "hash/md5.h"

namespace zt_transfers {

// A file, or a span of it, to be read.
struct ReadRequest {
  std::string path;
  bool hash = false;
  std::optional<SourceVersion> version{};  // required version; missing: any
  std::optional<ByteSpan> span{};          // missing: the whole file
};

// Consecutive bytes of a file.
struct SourceChunk {
  std::unique_ptr<char[]> data;
  std::size_t size = 0;
  bool last = false;
  std::string md5;  // of all bytes read; in the last chunk, if asked for
};

// Reads a file, or a span of it, once from beginning to end, and hashes it meanwhile. The last
// chunk is returned only if the file is unchanged, so that a mixture of two versions is never sent
// completely.
//
// Thread: one at a time; its calls block.
class CSourceReader {
 public:
  static constexpr std::size_t kChunk = std::size_t{256} * 1024;  // bytes

  explicit CSourceReader(ReadRequest readRequest) : readRequest_(std::move(readRequest)) {}

  // Both return nothing on success.
  std::optional<AttemptOutcome> open();
  // Reuses the chunk's memory, if it has any.
  std::optional<AttemptOutcome> readNext(SourceChunk& chunk);
  // The same without blocking. False, and nothing is read, if the bytes are not in the page cache,
  // are to be hashed, or include the last ones.
  bool readCached(SourceChunk& chunk);

  // Once it is open.
  const SourceVersion& version() const { return version_; }

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
