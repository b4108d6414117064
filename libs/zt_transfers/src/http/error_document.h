#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zt_transfers {

// The code of an object store's XML error document ("InternalError"; "unnamed" when it gives
// none), or nothing when `body` is no such document: its root element must be <Error>.
std::optional<std::string> errorDocumentCode(std::string_view body);

}  // namespace zt_transfers
