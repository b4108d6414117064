#pragma once

namespace zantrio {

// What the application's main does: loads the framework, makes the application object and runs the
// browser process. Gives the exit code.
int runApplication(int argc, char** argv);

// What the main of the helper application, which the framework starts for its sub-processes, does:
// enters the sandbox, loads the framework and runs the sub-process.
int runHelper(int argc, char** argv);

}  // namespace zantrio
