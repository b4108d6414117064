#pragma once

#include <cstddef>
#include <string_view>

namespace shown_text {

struct Character {
  char32_t code = 0;
  std::size_t length = 0;  // bytes
  bool valid = false;      // false: `code` is a byte that belongs to no UTF-8 character
};

// The first character of a text that is not empty.
Character firstCharacter(std::string_view text);

// The characters that terminals obey (C0, DEL, C1), and the separators of lines and paragraphs.
bool isControl(char32_t code);

// The characters that show nothing, or that change the order in which others are shown.
bool isInvisible(char32_t code);

// The zero-width joiner and non-joiner. They are invisible, but some scripts and pictures need them
// between two characters.
bool isJoiner(char32_t code);

}  // namespace shown_text
