#include "transfers/wide_text.h"

namespace zantrio {

std::wstring widenBytes(const std::string& text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (const char byte : text) {
    wide.push_back(static_cast<signed char>(byte));
  }
  return wide;
}

std::string narrowToBytes(const std::wstring& text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (const wchar_t character : text) {
    narrow.push_back(static_cast<char>(character & 0xFF));
  }
  return narrow;
}

}  // namespace zantrio
