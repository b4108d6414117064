#pragma once

#include <string>
#include <string_view>

namespace zantrio {

// Appends the bytes of an absolute path as the path of a URL: what may stand in a URL's path as it
// is stays, "/" included; every other byte becomes "%" and two upper-case hexadecimal digits. Any
// bytes can be encoded, so names that are no UTF-8 survive.
void appendPercentEncodedPath(std::string_view path, std::string& url);

}  // namespace zantrio
