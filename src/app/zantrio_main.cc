// The application: the browser process with its window and message loop.
#include <exception>
#include <iostream>

#include "app/browser_process.h"
#include "services/process_preparation.h"

int main(int argc, char** argv) {
  const zantrio::ProcessPreparation preparation;
  try {
    return zantrio::BrowserProcess(argc, argv).run();
  } catch (const std::exception& exception) {
    std::cerr << "zantrio: " << exception.what() << std::endl;
    return 1;
  }
}
