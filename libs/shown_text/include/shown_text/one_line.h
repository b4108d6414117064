#pragma once

#include <string>
#include <string_view>

namespace shown_text {

// The text as one line of a log or a terminal: control characters but tabs, invisible ones and
// bytes that are no UTF-8 become escapes such as "\n", "\x1B" and "\u202E". So the text of others
// begins no line of its own, gives a terminal no orders, and is shown in its order. Backslashes
// stay as they are, so that the text cannot be restored.
std::string oneLine(std::string_view text);

}  // namespace shown_text
