#pragma once

#include <string>
#include <string_view>

namespace zantrio {

// The form of a UTF-8 text in which upper and lower case are the same, and composed and decomposed
// letters, too. Always valid UTF-8: what is no character becomes U+FFFD.
std::string foldedText(std::string_view text);

}  // namespace zantrio
