#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zt_transfers {

// The path that a file: URL names, its percent escapes decoded to bytes as they stand (no
// character set is assumed). Nothing for another scheme, a foreign host, a relative path, a
// broken escape or an escaped NUL.
std::optional<std::string> pathOfFileUrl(std::string_view url);

}  // namespace zt_transfers
