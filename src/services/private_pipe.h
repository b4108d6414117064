#pragma once

#include <array>

namespace zantrio {

// Opens a pipe that the programs which this process starts do not inherit: the first end is for
// reading, the second for writing. On failure it returns false and leaves the reason in errno.
// Implemented by each platform.
bool openPrivatePipe(std::array<int, 2>& ends);

}  // namespace zantrio
