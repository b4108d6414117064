#pragma once

namespace zantrio {

// The application's main: loads the framework, creates the application object and runs the browser
// process. Returns the exit code.
int runApplication(int argc, char** argv);

// The main of the helper application, which the framework starts for its sub-processes: enters the
// sandbox, loads the framework and runs the sub-process. Returns the exit code.
int runHelper(int argc, char** argv);

}  // namespace zantrio
