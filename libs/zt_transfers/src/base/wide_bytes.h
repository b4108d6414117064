#pragma once

#include <string>
#include <string_view>

namespace zt_transfers {

// The bytes of a text that carries one byte a wide character. Characters may have been widened
// with their sign; only the low byte counts.
inline std::string bytesOf(std::wstring_view wide) {
  std::string bytes;
  bytes.reserve(wide.size());
  for (const wchar_t character : wide) {
    bytes.push_back(static_cast<char>(static_cast<unsigned char>(character)));
  }
  return bytes;
}

inline std::wstring widened(std::string_view bytes) {
  std::wstring wide;
  wide.reserve(bytes.size());
  for (const char byte : bytes) {
    wide.push_back(static_cast<unsigned char>(byte));
  }
  return wide;
}

}  // namespace zt_transfers
