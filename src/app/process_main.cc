// The executable that the framework starts for its sub-processes.
#include "app/reported_run.h"
#include "app/sub_process.h"

int main(int argc, char** argv) {
  return zantrio::runReported("zantrio-process",
                              [argc, argv] { return zantrio::runSubProcess(argc, argv); });
}
