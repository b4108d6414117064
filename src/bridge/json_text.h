#pragma once

#include <json/value.h>

#include <string>

namespace zantrio {

// The JSON text forms that travel between the page and the program. Thread: any.

// False when the text is not JSON. Comments are allowed; what follows the value is not looked at.
bool parseJson(const std::string& text, Json::Value& value);

// One line without blanks, ended by a line feed. Members come in the order of their names;
// non-ASCII characters are escaped.
std::string writeCompactJson(const Json::Value& value);

}  // namespace zantrio
