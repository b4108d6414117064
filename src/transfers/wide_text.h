#pragma once

#include <string>

namespace zantrio {

// The transfer library's wide texts carry one byte in each character, sign-extended; nothing is
// decoded.
std::wstring widenBytes(const std::string& text);
// Keeps the low byte of each character.
std::string narrowToBytes(const std::wstring& text);

}  // namespace zantrio
