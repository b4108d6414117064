#pragma once

#include <json/value.h>

#include <string>

namespace zantrio {

// Conversion of the JSON texts exchanged with the page. Thread: any.

// False when the text is not JSON. Comments are allowed; text after the value is ignored.
bool parseJson(const std::string& text, Json::Value& value);

// One line without blanks, ended by a line feed. Members are sorted by name; non-ASCII characters
// are escaped.
std::string writeCompactJson(const Json::Value& value);

}  // namespace zantrio
