#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace shown_text {

// The name of a file or folder with each control character and each invisible one replaced by the
// text that `replacement` makes of the character's bytes. A joiner between two characters that are
// not ASCII stays.
std::string replaceUnshown(std::string_view name,
                           const std::function<std::string(std::string_view)>& replacement);

}  // namespace shown_text
