#pragma once

namespace zantrio {

// The entry of the framework's sub-processes, which runs no message loop of its own. Returns the
// exit code.
int runSubProcess(int argc, char** argv);

}  // namespace zantrio
