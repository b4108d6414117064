#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zt_transfers {

// What a Content-Range header says.
struct ContentRange {
  std::optional<std::uint64_t> first;  // nothing in an answer that has no bytes ("bytes */9")
  std::uint64_t end = 0;               // one past the last byte
  std::optional<std::uint64_t> total;
};

// Nothing for a malformed or contradictory one.
std::optional<ContentRange> parseContentRange(std::string_view value);

// Digits only; nothing for anything else, or for more than 2^63 - 1.
std::optional<std::uint64_t> parseLength(std::string_view text);

}  // namespace zt_transfers
