#pragma once

#include <functional>

namespace zantrio {

// Runs `run` and gives its exit code; 1, and a line on standard error under `program`'s name, when
// a standard exception ended it.
int runReported(const char* program, const std::function<int()>& run);

}  // namespace zantrio
