#pragma once

#include <string>
#include <string_view>

namespace zantrio {

// `text` as valid UTF-8: each byte that belongs to no character becomes U+FFFD, everything else
// stays. File names may hold any bytes, JSON texts may not.
std::string toValidUtf8(std::string_view text);

// Whether all bytes are ASCII, and the text therefore valid UTF-8.
bool isAscii(std::string_view text);

}  // namespace zantrio
