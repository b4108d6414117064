#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zt_transfers {

// The MD5 digest, in lower-case hexadecimal, that an ETag holds: 32 hexadecimal digits, with or
// without quotes and the mark of a weak tag. Nothing for any other tag, such as that of an
// object made of several parts.
std::optional<std::string> md5OfETag(std::string_view etag);

}  // namespace zt_transfers
