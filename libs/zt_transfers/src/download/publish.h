#pragma once

#include <string>

#include "base/file_ops.h"

namespace zt_transfers {

// Both are about names in an open folder, and throw std::system_error.

// The number of the first countedName of `name`, from `count` on, that no file has.
unsigned freeCount(IFileOps& ops, int folder, const std::string& name, unsigned count);

// Renames a file. An existing file is never replaced, even if it appears meanwhile: false.
bool renameIfFree(IFileOps& ops, int folder, const std::string& from, const std::string& to);

}  // namespace zt_transfers
