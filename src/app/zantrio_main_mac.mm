// The application: the browser process with its window and message loop.
#include "app/main_mac.h"

int main(int argc, char** argv) {
  return zantrio::runApplication(argc, argv);
}
