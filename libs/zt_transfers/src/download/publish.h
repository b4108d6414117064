#pragma once

#include <string>

#include "base/file_ops.h"

namespace zt_transfers {

// Gives the file `partial` in the open folder its final name, or a counted one if that is taken.
// Existing files are never replaced, even if they appear meanwhile. Returns the name; throws
// std::system_error.
std::string publish(IFileOps& ops, int folder, const std::string& partial, const std::string& name);

}  // namespace zt_transfers
