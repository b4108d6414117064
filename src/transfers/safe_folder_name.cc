#include "transfers/safe_folder_name.h"

#include <algorithm>
#include <sstream>

namespace zantrio {
namespace {

constexpr char kReplacement = '_';
constexpr std::size_t kMaxNameLength = 255;  // bytes

bool isControl(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7F;
}

bool continuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;  // in UTF-8
}

void cut(std::string& name) {
  if (name.size() <= kMaxNameLength) {
    return;
  }
  std::size_t end = kMaxNameLength;
  while (end > 0 && continuesCharacter(name[end])) {
    --end;
  }
  name.resize(end);
}

std::string safeName(std::string name) {
  std::replace_if(name.begin(), name.end(), isControl, kReplacement);
  if (name.front() == '.') {
    name.front() = kReplacement;
  }
  cut(name);
  return name;
}

}  // namespace

std::string safeFolderName(const std::string& text) {
  std::string path;
  std::istringstream names(text);
  for (std::string name; std::getline(names, name, '/');) {
    if (name.empty() || name == "." || name == "..") {
      continue;
    }
    path += (path.empty() ? "" : "/") + safeName(name);
  }
  return path;
}

}  // namespace zantrio
