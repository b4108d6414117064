#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zt_transfers {

// The code of an object store's XML error document, such as "InternalError"; "unnamed" without a
// code. std::nullopt for other documents: the root element must be <Error>.
std::optional<std::string> errorDocumentCode(std::string_view body);

}  // namespace zt_transfers
