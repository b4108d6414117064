#include "shown_text/characters.h"

#include <algorithm>
#include <array>

namespace shown_text {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr std::array<Range, 15> kInvisible{{
    {0x00AD, 0x00AD},    // soft hyphen
    {0x061C, 0x061C},    // Arabic letter mark
    {0x115F, 0x1160},    // Hangul fillers
    {0x180E, 0x180E},    // Mongolian vowel separator
    {0x200B, 0x200F},    // zero-width characters, marks of direction
    {0x2028, 0x2029},    // separators of lines and paragraphs
    {0x202A, 0x202E},    // embeddings and overrides of direction
    {0x2060, 0x206F},    // joiners, isolates and other format characters
    {0x3164, 0x3164},    // Hangul filler
    {0xFEFF, 0xFEFF},    // byte order mark
    {0xFFA0, 0xFFA0},    // Hangul filler
    {0xFFF9, 0xFFFB},    // annotations
    {0x1BCA0, 0x1BCA3},  // controls of shorthand
    {0x1D173, 0x1D17A},  // controls of music
    {0xE0000, 0xE007F},  // tags
}};

constexpr unsigned char kContinuationMask = 0xC0;
constexpr unsigned char kContinuation = 0x80;

struct Lead {
  std::size_t length;
  char32_t bits;
  char32_t least;  // smaller codes have a shorter form
};

Lead leadOf(unsigned char byte) {
  if (byte < 0x80) {
    return {1, byte, 0};
  }
  if (byte >= 0xC2 && byte < 0xE0) {
    return {2, static_cast<char32_t>(byte & 0x1F), 0x80};
  }
  if (byte >= 0xE0 && byte < 0xF0) {
    return {3, static_cast<char32_t>(byte & 0x0F), 0x800};
  }
  if (byte >= 0xF0 && byte < 0xF5) {
    return {4, static_cast<char32_t>(byte & 0x07), 0x10000};
  }
  return {0, 0, 0};
}

bool isSurrogate(char32_t code) {
  return code >= 0xD800 && code <= 0xDFFF;
}

}  // namespace

Character firstCharacter(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text.front());
  const Character broken{byte, 1, false};
  const Lead lead = leadOf(byte);
  if (lead.length == 0 || text.size() < lead.length) {
    return broken;
  }
  char32_t code = lead.bits;
  for (std::size_t at = 1; at < lead.length; ++at) {
    const auto next = static_cast<unsigned char>(text[at]);
    if ((next & kContinuationMask) != kContinuation) {
      return broken;
    }
    code = (code << 6) | (next & 0x3FU);
  }
  if (code < lead.least || code > 0x10FFFF || isSurrogate(code)) {
    return broken;
  }
  return {code, lead.length, true};
}

bool isControl(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x2028 || code == 0x2029;
}

bool isInvisible(char32_t code) {
  return std::any_of(kInvisible.begin(), kInvisible.end(), [code](const Range& range) {
    return code >= range.first && code <= range.last;
  });
}

bool isJoiner(char32_t code) {
  return code == 0x200C || code == 0x200D;
}

}  // namespace shown_text
