#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zantrio::devservice {

// Bytes first..last of a file, both included.
struct ByteRange {
  std::uint64_t first = 0;
  std::uint64_t last = 0;
};

struct RangeRequest {
  enum class Kind { kWhole, kPart, kUnsatisfiable };
  Kind kind = Kind::kWhole;
  ByteRange part;
};

// The range that a header requests of a file of that size. Several ranges, other units and
// malformed headers get the whole file, as HTTP allows.
RangeRequest parseRange(const std::string& header, std::uint64_t size);

}  // namespace zantrio::devservice
