#include "download/counted_name.h"

#include "hash/md5.h"

namespace zt_transfers {
namespace {

constexpr std::size_t kLongestName = 255;    // bytes
constexpr std::size_t kLongestEnding = 32;   // more is taken for a part of the name
constexpr std::size_t kShownOfPartial = 80;  // bytes of the name, to tell whose partial file it is
constexpr std::size_t kDigestDigits = 16;

// At most `limit` bytes, and no character cut in two.
std::string cut(const std::string& text, std::size_t limit) {
  if (text.size() <= limit) {
    return text;
  }
  std::size_t end = limit;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
    --end;
  }
  // What is no UTF-8 is cut anywhere.
  return text.substr(0, end == 0 ? limit : end);
}

}  // namespace

std::string countedName(const std::string& name, unsigned count) {
  if (count == 0) {
    return name;
  }
  const auto dot = name.rfind('.');
  const bool hasEnding =
      dot != std::string::npos && dot != 0 && name.size() - dot <= kLongestEnding;
  const std::string ending = hasEnding ? name.substr(dot) : "";
  const std::string tail = " (" + std::to_string(count) + ")" + ending;
  return cut(name.substr(0, name.size() - ending.size()), kLongestName - tail.size()) + tail;
}

std::string partialName(const std::string& name, std::string_view key) {
  CMd5 md5;
  md5.add(key.data(), key.size());
  return "." + cut(name, kShownOfPartial) + "." + md5.finish().substr(0, kDigestDigits) + ".part";
}

}  // namespace zt_transfers
