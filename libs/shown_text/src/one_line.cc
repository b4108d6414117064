#include "shown_text/one_line.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "shown_text/characters.h"

namespace shown_text {
namespace {

bool isPlain(char character) {
  return (character >= 0x20 && character < 0x7F) || character == '\t';
}

std::string escapeOf(const Character& character) {
  switch (character.code) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    default:
      break;
  }
  const bool isByte = !character.valid || character.code < 0x80;
  const char* const pattern = isByte ? "\\x%02X" : character.code <= 0xFFFF ? "\\u%04X" : "\\U%08X";
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), pattern, static_cast<unsigned>(character.code));
  return text.data();
}

}  // namespace

std::string oneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  while (!text.empty()) {
    const auto plain = std::find_if_not(text.begin(), text.end(), isPlain);
    const auto length = static_cast<std::size_t>(plain - text.begin());
    line += text.substr(0, length);
    text.remove_prefix(length);
    if (text.empty()) {
      break;
    }
    const Character character = firstCharacter(text);
    if (!character.valid || isControl(character.code) || isInvisible(character.code)) {
      line += escapeOf(character);
    } else {
      line += text.substr(0, character.length);
    }
    text.remove_prefix(character.length);
  }
  return line;
}

}  // namespace shown_text
