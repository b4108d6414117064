#pragma once

#include <string>
#include <vector>

namespace zantrio {

// The current working directory; empty when it was deleted.
std::string workingFolder();

// Makes the names absolute: relative ones are resolved against `folder`. Leaves out empty names,
// and relative ones if `folder` is empty. The file system is not accessed.
std::vector<std::string> absolutePaths(const std::vector<std::string>& names,
                                       const std::string& folder);

}  // namespace zantrio
