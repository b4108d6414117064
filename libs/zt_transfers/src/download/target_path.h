#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zt_transfers {

// Where a file goes below its group's folder.
struct TargetPath {
  std::vector<std::string> folders;
  std::string name;
};

// A path from the service taken apart; slashes separate. Throws std::invalid_argument, with a
// text that says why, for one that would leave the folder or names no file: absolute, "..", ".",
// an empty name, a NUL, or a name longer than file systems take.
TargetPath parseTargetPath(std::string_view path);

}  // namespace zt_transfers
