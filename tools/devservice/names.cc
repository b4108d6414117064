#include "devservice/names.h"

#include <Poco/TextEncoding.h>
#include <Poco/UTF8Encoding.h>

#include <algorithm>

namespace zantrio::devservice {

namespace {

constexpr std::size_t kMaxName = 255;
constexpr std::size_t kMaxPath = 3000;
constexpr std::size_t kMaxShown = 120;

bool isUtf8(std::string_view text) {
  const Poco::UTF8Encoding encoding;
  const auto* at = reinterpret_cast<const unsigned char*>(text.data());
  const auto* const end = at + text.size();
  while (at < end) {
    const int length = encoding.sequenceLength(at, static_cast<int>(end - at));
    if (length <= 0 || length > end - at || !Poco::UTF8Encoding::isLegal(at, length)) {
      return false;
    }
    at += length;
  }
  return true;
}

std::string nameProblem(std::string_view name) {
  if (name.empty()) {
    return "a name in it is empty";
  }
  if (name == "." || name == "..") {
    return "it leaves its folder";
  }
  if (name.size() > kMaxName) {
    return "a name in it is longer than 255 bytes";
  }
  return {};
}

// "(2)" goes before the extension: "report (2).pdf", ".profile (2)".
std::string counted(const std::string& name, int count) {
  const auto dot = name.rfind('.');
  const bool hasExtension = dot != std::string::npos && dot > 0;
  std::string stem = hasExtension ? name.substr(0, dot) : name;
  const std::string tail =
      " (" + std::to_string(count) + ")" + (hasExtension ? name.substr(dot) : std::string());
  while (!stem.empty() && stem.size() + tail.size() > kMaxName) {
    // Removes whole characters: continuation bytes together with their first byte.
    while ((static_cast<unsigned char>(stem.back()) & 0xC0) == 0x80) {
      stem.pop_back();
    }
    stem.pop_back();
  }
  return stem + tail;
}

}  // namespace

std::string pathProblem(std::string_view path) {
  if (path.empty()) {
    return "it is empty";
  }
  if (path.front() == '/') {
    return "it is absolute";
  }
  if (path.size() > kMaxPath) {
    return "it is longer than 3000 bytes";
  }
  if (path.find('\0') != std::string_view::npos) {
    return "it contains a NUL";
  }
  if (!isUtf8(path)) {
    return "it is not UTF-8";
  }
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    if (std::string why = nameProblem(path.substr(begin, end - begin)); !why.empty()) {
      return why;
    }
    begin = end + 1;
  }
  return {};
}

std::string printable(std::string_view text) {
  std::string shown(text.substr(0, kMaxShown));
  for (char& character : shown) {
    if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F) {
      character = '?';
    }
  }
  if (!isUtf8(shown)) {
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return (c & 0x80) != 0; }, '?');
  }
  return text.size() > kMaxShown ? shown + "..." : shown;
}

std::string encodePath(std::string_view path) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  static constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  std::string encoded;
  encoded.reserve(path.size() + path.size() / 4);
  for (const char character : path) {
    if (kPlain.find(character) != std::string_view::npos) {
      encoded += character;
    } else {
      const auto value = static_cast<unsigned char>(character);
      encoded += '%';
      encoded += kDigits[value >> 4];
      encoded += kDigits[value & 15];
    }
  }
  return encoded;
}

std::string CPathAllocator::allocate(const std::string& wanted) {
  std::string folder;
  std::size_t begin = 0;
  for (std::size_t slash; (slash = wanted.find('/', begin)) != std::string::npos;
       begin = slash + 1) {
    folder += freeName(folder, wanted.substr(begin, slash - begin), Kind::kFolder) + '/';
  }
  std::string path = folder + freeName(folder, wanted.substr(begin), Kind::kFile);
  reserve(path);
  return path;
}

void CPathAllocator::reserve(const std::string& path) {
  taken_[path] = Kind::kFile;
  for (auto slash = path.rfind('/'); slash != std::string::npos && slash > 0;
       slash = path.rfind('/', slash - 1)) {
    if (!taken_.emplace(path.substr(0, slash), Kind::kFolder).second) {
      return;
    }
  }
}

bool CPathAllocator::fits(const std::string& path, Kind kind) const {
  const auto found = taken_.find(path);
  return found == taken_.end() || (kind == Kind::kFolder && found->second == Kind::kFolder);
}

std::string CPathAllocator::freeName(const std::string& folder, const std::string& name,
                                     Kind kind) {
  if (fits(folder + name, kind)) {
    return name;
  }
  // A folder must find the same numbered name again, so only files continue from the last number.
  int fromTheStart = 1;
  int& count =
      kind == Kind::kFile ? lastCount_.try_emplace(folder + name, 1).first->second : fromTheStart;
  std::string candidate;
  do {
    candidate = counted(name, ++count);
  } while (!fits(folder + candidate, kind));
  return candidate;
}

}  // namespace zantrio::devservice
