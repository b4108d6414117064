#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "engine/download_resume.h"

namespace zt_transfers {

// Identifies the content of a file without reading it.
struct SourceVersion {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;     // bytes
  std::int64_t modified = 0;  // nanoseconds since 1970
  // Nanoseconds since 1970, set by the system whenever the content, the attributes or the name
  // change. Unlike `modified` it cannot be set back.
  std::int64_t touched = 0;

  // Device numbers change when a disk is attached again, and some file systems number their files
  // anew with each mount. So this holds for another file with a copied time, too.
  bool maybeSameContent(const SourceVersion& other) const {
    return size == other.size && modified == other.modified;
  }
  // Ignores `touched`. For versions seen by the same attempt.
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
  std::string md5;           // of its bytes, lower-case hexadecimal; empty: not computed

  bool operator==(const SentPart&) const = default;
};

// A multipart upload that was initiated on a server, and its progress. All parts but the last have
// the same size.
struct UploadSession {
  static constexpr std::uint32_t kMaxParts = 10'000;  // as servers limit them

  std::string uploadId;  // empty: none was initiated
  std::string url;       // for requests to resume or abort it, as are the headers
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

// The size of the parts in which a file of `size` bytes is sent. `wanted` is the page's choice, 0:
// none; it is raised where a server would not accept so many parts.
std::uint64_t partSizeFor(std::uint64_t size, std::uint64_t wanted);

}  // namespace zt_transfers
