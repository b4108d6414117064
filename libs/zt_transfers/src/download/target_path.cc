#include "download/target_path.h"

#include <stdexcept>

#include "hash/md5.h"

namespace zt_transfers {
namespace {

constexpr std::size_t kLongestEnding = 32;   // anything longer belongs to the name
constexpr std::size_t kShownOfPartial = 80;  // bytes of the name that a partial file's name shows
constexpr std::size_t kDigestDigits = 16;

void check(std::string_view name) {
  if (name.empty()) {
    throw std::invalid_argument("its path has an empty name in it");
  }
  if (name == "." || name == "..") {
    throw std::invalid_argument("its path has a name of dots only in it");
  }
  if (name.size() > kLongestName) {
    throw std::invalid_argument("its path has a name of more than 255 bytes in it");
  }
}

// At most `limit` bytes, without a partial character at the end.
std::string cut(const std::string& text, std::size_t limit) {
  if (text.size() <= limit) {
    return text;
  }
  std::size_t end = limit;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
    --end;
  }
  // Text that is not UTF-8 is cut anywhere.
  return text.substr(0, end == 0 ? limit : end);
}

}  // namespace

TargetPath parseTargetPath(std::string_view path) {
  if (path.empty()) {
    throw std::invalid_argument("it has no path");
  }
  if (path.front() == '/') {
    throw std::invalid_argument("its path is absolute");
  }
  if (path.find('\0') != std::string_view::npos) {
    throw std::invalid_argument("its path has a NUL in it");
  }
  TargetPath target;
  for (auto slash = path.find('/'); slash != std::string_view::npos; slash = path.find('/')) {
    check(path.substr(0, slash));
    target.folders.emplace_back(path.substr(0, slash));
    path.remove_prefix(slash + 1);
  }
  check(path);
  target.name = path;
  return target;
}

std::string withTail(const std::string& name, const std::string& tail) {
  const auto dot = name.rfind('.');
  const bool hasEnding =
      dot != std::string::npos && dot != 0 && name.size() - dot <= kLongestEnding;
  const std::string end = tail + (hasEnding ? name.substr(dot) : "");
  return cut(name.substr(0, hasEnding ? dot : name.size()), kLongestName - end.size()) + end;
}

std::string countedName(const std::string& name, unsigned count) {
  return count == 0 ? name : withTail(name, " (" + std::to_string(count) + ")");
}

std::string partialName(const std::string& name, std::string_view key) {
  CMd5 md5;
  md5.add(key.data(), key.size());
  return "." + cut(name, kShownOfPartial) + "." + md5.finish().substr(0, kDigestDigits) + ".part";
}

}  // namespace zt_transfers
