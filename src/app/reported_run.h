#pragma once

#include <functional>

namespace zantrio {

// Runs `run` and returns its exit code. A standard exception is reported on standard error under
// the name `program`, and the exit code is 1.
int runReported(const char* program, const std::function<int()>& run);

}  // namespace zantrio
