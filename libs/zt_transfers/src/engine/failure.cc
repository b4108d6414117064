#include "engine/failure.h"

namespace zt_transfers {
namespace {

bool isControl(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7F;
}

// Cuts the text at its limit, between two UTF-8 characters.
std::string_view shortened(std::string_view text) {
  if (text.size() <= Failure::kMaxReason) {
    return text;
  }
  std::size_t end = Failure::kMaxReason;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
    --end;
  }
  return text.substr(0, end);
}

}  // namespace

Failure failureOf(std::string_view code, std::string_view reason) {
  Failure failure{std::string(code), std::string(shortened(reason))};
  for (char& character : failure.reason) {
    if (isControl(character)) {
      character = ' ';
    }
  }
  return failure;
}

}  // namespace zt_transfers
