#pragma once

#include <string>
#include <system_error>
#include <vector>

#include "base/unique_fd.h"

namespace zt_transfers {

enum class MissingFolders { kMake, kFail };

// The group's own folder is not there, and may come back.
class CFolderGone : public std::system_error {
 public:
  using std::system_error::system_error;
};

// Opens a folder below a group's own, name by name, so that no symbolic link in between can lead
// out of it. The group's folder itself may be anything the user chose. What is made is noted in
// CNewFolders. Throws std::system_error. A missing folder of the group is made if only it itself is
// missing: more missing looks like a disk that is not mounted, and is a CFolderGone.
CUniqueFd openTargetFolder(const std::string& groupFolder, const std::vector<std::string>& folders,
                           MissingFolders missing);

}  // namespace zt_transfers
