#pragma once

#include <string>

namespace zt_transfers {

// Sixteen random bytes.
std::string randomSalt();

}  // namespace zt_transfers
