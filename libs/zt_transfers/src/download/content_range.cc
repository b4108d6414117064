#include "download/content_range.h"

#include <charconv>
#include <limits>

#include "base/ascii.h"

namespace zt_transfers {

std::optional<std::uint64_t> parseLength(std::string_view text) {
  std::uint64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stopped != end ||
      value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    return std::nullopt;
  }
  return value;
}

std::optional<ContentRange> parseContentRange(std::string_view value) {
  constexpr std::string_view kUnit = "bytes ";
  value = trimmed(value);
  if (!startsWithIgnoringCase(value, kUnit)) {
    return std::nullopt;
  }
  value = trimmed(value.substr(kUnit.size()));
  const auto slash = value.find('/');
  if (slash == std::string_view::npos) {
    return std::nullopt;
  }
  ContentRange range;
  const std::string_view total = value.substr(slash + 1);
  if (total != "*") {
    range.total = parseLength(total);
    if (!range.total) {
      return std::nullopt;
    }
  }
  const std::string_view span = value.substr(0, slash);
  if (span == "*") {
    return range;
  }
  const auto dash = span.find('-');
  if (dash == std::string_view::npos) {
    return std::nullopt;
  }
  const auto first = parseLength(span.substr(0, dash));
  const auto last = parseLength(span.substr(dash + 1));
  if (!first || !last || *last < *first || (range.total && *last >= *range.total)) {
    return std::nullopt;
  }
  range.first = first;
  range.end = *last + 1;
  return range;
}

}  // namespace zt_transfers
