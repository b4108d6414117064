#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "engine/download_resume.h"

namespace zt_transfers {

// Which content a path had: as long as none of this changes, the file is taken for the same.
struct SourceVersion {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;     // bytes
  std::int64_t modified = 0;  // nanoseconds since 1970
  // Nanoseconds since 1970, set by the system whenever anything about the file is changed: its
  // content, also where `modified` was set back afterwards, but its name as well.
  std::int64_t touched = 0;

  // Leaves `touched` out.
  bool sameContent(const SourceVersion& other) const {
    return device == other.device && inode == other.inode && size == other.size &&
           modified == other.modified;
  }
  bool operator==(const SourceVersion&) const = default;
};

// A part that the server has confirmed.
struct SentPart {
  std::uint32_t number = 0;  // from 1 on
  std::string etag;          // as the server gave it
  std::string md5;           // of what was sent, lower-case hexadecimal; empty: not computed

  bool operator==(const SentPart&) const = default;
};

// An upload in parts that was begun on a server, and how far it is. Parts have all the same size,
// but for the last one.
struct UploadSession {
  static constexpr std::uint32_t kMaxParts = 10'000;  // that a server takes

  std::string uploadId;  // empty: nothing was begun
  std::string url;       // with these two it can be gone on with, or aborted
  std::vector<std::pair<std::string, std::string>> headers;
  std::uint64_t partSize = 0;  // bytes
  SourceVersion source;
  bool completing = false;      // the server was asked to put the parts together
  std::vector<SentPart> parts;  // in the order of their arrival

  bool begun() const { return !uploadId.empty(); }
  std::uint32_t partCount() const;
  // The bytes of a part; `number` from 1 to partCount().
  ByteSpan spanOf(std::uint32_t number) const;
  std::uint64_t bytesSent() const;

  bool operator==(const UploadSession&) const = default;
};

}  // namespace zt_transfers
