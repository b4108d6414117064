// The helper application, which the framework starts for its sub-processes.
#include "platform/mac/app/main.h"

int main(int argc, char** argv) {
  return zantrio::runHelper(argc, argv);
}
