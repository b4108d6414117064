#pragma once

#include <string>
#include <string_view>

namespace zt_transfers {

// "name.ext" for 0, else "name (1).ext" and so on; cut so that it stays a name that file systems
// take, at the border of a UTF-8 character.
std::string countedName(const std::string& name, unsigned count);

// The hidden name under which a file of this name arrives: short enough for every name, the same
// each time for the same `key`, another for another.
std::string partialName(const std::string& name, std::string_view key);

}  // namespace zt_transfers
