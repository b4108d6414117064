#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "devservice/dev_server.h"
#include "devservice/options.h"

namespace {

// Every thread inherits the mask, so that only the main thread receives the signals.
sigset_t blockEndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

int serve(const zantrio::devservice::Options& options) {
  const sigset_t endSignals = blockEndSignals();
  std::signal(SIGPIPE, SIG_IGN);
  zantrio::devservice::CDevServer server(options);
  std::cout << "listening on " << server.url() << std::endl;
  int signal = 0;
  sigwait(&endSignals, &signal);
  server.stop();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const auto options =
        zantrio::devservice::parseOptions(std::vector<std::string>(argv + 1, argv + argc));
    if (options.help) {
      std::cout << zantrio::devservice::kUsage;
      return 0;
    }
    return serve(options);
  } catch (const std::exception& error) {
    std::cerr << "zantrio-devservice: " << error.what() << std::endl;
    return 1;
  }
}
