// The helper application, which the framework starts for its sub-processes.
#include "app/main_mac.h"

int main(int argc, char** argv) {
  return zantrio::runHelper(argc, argv);
}
