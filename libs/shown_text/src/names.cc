#include "shown_text/names.h"

#include "shown_text/characters.h"

namespace shown_text {
namespace {

bool isUnshown(const Character& character) {
  return character.valid && (isControl(character.code) || isInvisible(character.code));
}

bool canBeJoined(const Character& character) {
  return character.valid && character.code >= 0x80 && !isUnshown(character);
}

}  // namespace

std::string replaceUnshown(std::string_view name,
                           const std::function<std::string(std::string_view)>& replacement) {
  std::string shown;
  Character before;
  while (!name.empty()) {
    const Character character = firstCharacter(name);
    const std::string_view bytes = name.substr(0, character.length);
    name.remove_prefix(character.length);
    const bool joins = isJoiner(character.code) && canBeJoined(before) && !name.empty() &&
                       canBeJoined(firstCharacter(name));
    shown += isUnshown(character) && !joins ? replacement(bytes) : std::string(bytes);
    before = character;
  }
  return shown;
}

}  // namespace shown_text
