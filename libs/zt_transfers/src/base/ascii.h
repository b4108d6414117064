#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace zt_transfers {

// Helpers for protocol text, which is ASCII whatever the locale.

constexpr char lowerAscii(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A'))
                                              : character;
}

// -1 when `character` is no hexadecimal digit.
constexpr int hexDigitValue(char character) {
  const char lower = lowerAscii(character);
  if (lower >= '0' && lower <= '9') {
    return lower - '0';
  }
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

constexpr bool equalsIgnoringCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return lowerAscii(a) == lowerAscii(b); });
}

constexpr bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && equalsIgnoringCase(text.substr(0, prefix.size()), prefix);
}

constexpr std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

inline std::string loweredAscii(std::string_view text) {
  std::string lowered(text);
  std::transform(lowered.begin(), lowered.end(), lowered.begin(), lowerAscii);
  return lowered;
}

}  // namespace zt_transfers
