#include "devservice/range.h"

#include <charconv>
#include <string_view>

namespace zantrio::devservice {

namespace {

std::optional<std::uint64_t> number(std::string_view text) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return value;
}

RangeRequest part(std::uint64_t first, std::uint64_t last, std::uint64_t size) {
  if (first >= size) {
    return {RangeRequest::Kind::kUnsatisfiable, {}};
  }
  return {RangeRequest::Kind::kPart, {first, last < size ? last : size - 1}};
}

}  // namespace

RangeRequest parseRange(const std::string& header, std::uint64_t size) {
  constexpr std::string_view kUnit = "bytes=";
  if (header.rfind(kUnit, 0) != 0) {
    return {};
  }
  const std::string_view range = std::string_view(header).substr(kUnit.size());
  const auto dash = range.find('-');
  if (dash == std::string_view::npos) {
    return {};
  }
  const std::string_view before = range.substr(0, dash);
  const std::string_view after = range.substr(dash + 1);
  if (before.empty()) {
    const auto count = number(after);
    if (!count) {
      return {};
    }
    if (*count == 0) {
      return {RangeRequest::Kind::kUnsatisfiable, {}};
    }
    return part(*count < size ? size - *count : 0, size, size);
  }
  const auto first = number(before);
  const auto last = after.empty() ? std::optional<std::uint64_t>(UINT64_MAX) : number(after);
  if (!first || !last || *last < *first) {
    return {};
  }
  return part(*first, *last, size);
}

}  // namespace zantrio::devservice
