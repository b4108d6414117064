#pragma once

#include <string>

namespace zt_transfers {

// Gives the file `partial` in the open folder its final name, or a counted one where that is
// taken. Nothing that is there is replaced, whoever makes it when. Gives the name; throws
// std::system_error.
std::string publish(int folder, const std::string& partial, const std::string& name);

}  // namespace zt_transfers
