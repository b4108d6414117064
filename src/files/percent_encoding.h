#pragma once

#include <string>
#include <string_view>

namespace zantrio {

// Appends an absolute path to a URL, percent-encoded: characters that are allowed in a URL's path
// stay, "/" included; every other byte becomes "%" and two upper-case hexadecimal digits. The path
// may contain any bytes, not only UTF-8.
void appendPercentEncodedPath(std::string_view path, std::string& url);

}  // namespace zantrio
