#include "transfers/safe_folder_name.h"

#include <sstream>
#include <string_view>

#include "shown_text/names.h"

namespace zantrio {
namespace {

constexpr char kReplacement = '_';
constexpr std::size_t kMaxNameLength = 255;  // bytes
constexpr const char* kNameWithout = "Message";

bool showsNothing(const std::string& name) {
  return name.find_first_not_of(' ') == std::string::npos || name == "." || name == "..";
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

std::string safeName(const std::string& text) {
  std::string name = shown_text::replaceUnshown(
      text, [](std::string_view) { return std::string(1, kReplacement); });
  if (name.front() == '.' || name.front() == '-') {
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
    const std::string safe = showsNothing(name) ? "" : safeName(name);
    if (!safe.empty()) {
      path += (path.empty() ? "" : "/") + safe;
    }
  }
  return path.empty() && !text.empty() ? kNameWithout : path;
}

}  // namespace zantrio
