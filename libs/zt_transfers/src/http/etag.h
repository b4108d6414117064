#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zt_transfers {

// The MD5 digest, in lower-case hexadecimal, that an ETag holds: 32 hexadecimal digits, with or
// without quotes and the mark of a weak tag. std::nullopt for any other tag, such as that of a
// multipart object.
std::optional<std::string> md5OfETag(std::string_view etag);

// The tag of an object made of several parts, "<MD5 of the parts' raw MD5s>-<their number>",
// without quotes and in lower case. std::nullopt for any other tag.
std::optional<std::string> compositeOfETag(std::string_view etag);

// A tag without quotes and the mark of a weak tag.
std::string_view bareETag(std::string_view etag);

}  // namespace zt_transfers
