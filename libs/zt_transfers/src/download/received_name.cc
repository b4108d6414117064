#include "download/received_name.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

#include "base/ascii.h"
#include "hash/md5.h"
#include "shown_text/characters.h"
#include "shown_text/names.h"

namespace zt_transfers {
namespace {

constexpr std::size_t kDigestDigits = 16;
constexpr std::size_t kLongestCharacter = 4;  // bytes

// Hidden names need not be here.
constexpr auto kReadBySystems = std::to_array<std::string_view>(
    {"autoopen", "autorun", "autorun.inf", "autorun.sh", "desktop.ini", "folder.htt", "thumbs.db"});

bool needsPrefix(std::string_view name) {
  name.remove_prefix(std::min(name.find_first_not_of('_'), name.size()));
  return name.starts_with('.') || name.starts_with('-') ||
         std::any_of(kReadBySystems.begin(), kReadBySystems.end(),
                     [name](std::string_view read) { return equalsIgnoringCase(name, read); });
}

std::string escapeOf(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string escape;
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    escape.append({'%', kDigits[byte >> 4], kDigits[byte & 0xF]});
  }
  return escape;
}

std::optional<char> escapedByte(std::string_view text) {
  const auto isDigit = [](char c) { return hexDigitValue(c) >= 0 && !(c >= 'a' && c <= 'f'); };
  if (text.size() < 3 || text[0] != '%' || !isDigit(text[1]) || !isDigit(text[2])) {
    return std::nullopt;
  }
  return static_cast<char>(hexDigitValue(text[1]) * 16 + hexDigitValue(text[2]));
}

// Whether `text`, which begins with "%", begins an escape, or one whose "%" is escaped already.
bool beginsEscape(std::string_view text) {
  constexpr std::string_view kEscapedPercent = "25";
  text.remove_prefix(1);
  while (text.starts_with(kEscapedPercent)) {
    text.remove_prefix(kEscapedPercent.size());
  }
  const std::string rest = "%" + std::string(text.substr(0, 3 * kLongestCharacter));
  std::string bytes;
  for (std::size_t at = 0; bytes.size() < kLongestCharacter; at += 3) {
    const auto byte = escapedByte(std::string_view(rest).substr(std::min(at, rest.size())));
    if (!byte) {
      break;
    }
    bytes += *byte;
  }
  if (bytes.empty()) {
    return false;
  }
  const auto character = shown_text::firstCharacter(bytes);
  return character.valid &&
         (shown_text::isControl(character.code) || shown_text::isInvisible(character.code));
}

std::string withEscapesEscaped(std::string_view name) {
  std::string escaped;
  for (std::size_t at = 0; at < name.size(); ++at) {
    escaped += name[at];
    if (name[at] == '%' && beginsEscape(name.substr(at))) {
      escaped += "25";
    }
  }
  return escaped;
}

}  // namespace

std::string receivedName(std::string_view name) {
  const std::string shown = (needsPrefix(name) ? "_" : "") +
                            shown_text::replaceUnshown(withEscapesEscaped(name), escapeOf);
  if (shown.size() <= kLongestName) {
    return shown;
  }
  CMd5 md5;
  md5.add(name.data(), name.size());
  return withTail(shown, "~" + md5.finish().substr(0, kDigestDigits));
}

TargetPath receivedTarget(const TargetPath& target) {
  TargetPath received;
  std::transform(target.folders.begin(), target.folders.end(), std::back_inserter(received.folders),
                 receivedName);
  received.name = receivedName(target.name);
  return received;
}

}  // namespace zt_transfers
