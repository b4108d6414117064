#pragma once

#include <string>
#include <vector>

namespace zantrio {

// Puts the names of all entries of `folder` but "." and ".." into `names`, in the order in which
// the file system gives them. 0, or the error number; `names` then holds what was read before it.
// Thread: any.
int listFolder(const std::string& folder, std::vector<std::string>& names);

}  // namespace zantrio
