#pragma once

#include <string>
#include <vector>

namespace zantrio {

// The folder that relative names count from; empty when it is gone.
std::string workingFolder();

// The named files as absolute paths: relative names count from `folder`. Nothing is looked up.
std::vector<std::string> absolutePaths(const std::vector<std::string>& names,
                                       const std::string& folder);

}  // namespace zantrio
