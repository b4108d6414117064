#pragma once

namespace zantrio {

// The plain process entry, which the framework starts for its sub-processes. It runs no message
// loop of its own. Gives the exit code.
int runSubProcess(int argc, char** argv);

}  // namespace zantrio
