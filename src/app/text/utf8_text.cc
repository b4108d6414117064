#include "app/text/utf8_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zantrio {
namespace {

bool isContinuation(char character) {
  return (static_cast<unsigned char>(character) & 0xC0) == 0x80;
}

// The length of a character with this first byte; 0 for a byte that begins no character.
std::size_t announcedLength(unsigned char first) {
  if (first < 0x80) {
    return 1;
  }
  if (first >= 0xC2 && first < 0xE0) {
    return 2;
  }
  if (first >= 0xE0 && first < 0xF0) {
    return 3;
  }
  return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

// Overlong forms, surrogates and values beyond Unicode are recognised by the second byte.
bool isSecondByteAllowed(unsigned char first, unsigned char second) {
  switch (first) {
    case 0xE0:
      return second >= 0xA0;
    case 0xED:
      return second < 0xA0;
    case 0xF0:
      return second >= 0x90;
    case 0xF4:
      return second < 0x90;
    default:
      return true;
  }
}

// The length of the valid character at the beginning of `text`; 0 when there is none.
std::size_t characterLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  const std::size_t length = announcedLength(first);
  if (length < 2 || length > text.size()) {
    return length == 1 ? 1 : 0;
  }
  const std::string_view rest = text.substr(1, length - 1);
  const bool valid = std::all_of(rest.begin(), rest.end(), isContinuation) &&
                     isSecondByteAllowed(first, static_cast<unsigned char>(rest[0]));
  return valid ? length : 0;
}

}  // namespace

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char character) { return static_cast<unsigned char>(character) < 0x80; });
}

std::string toValidUtf8(std::string_view text) {
  constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    valid += length == 0 ? kReplacement : text.substr(0, length);
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return valid;
}

}  // namespace zantrio
