// The application: the browser process with its window and message loop.
#include "platform/mac/app/main.h"

int main(int argc, char** argv) {
  return zantrio::runApplication(argc, argv);
}
