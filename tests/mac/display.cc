#include "mac/display.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace zantrio::mac_test {
namespace {

[[noreturn]] void runServer(int numberPipe) {
  const std::string descriptor = std::to_string(numberPipe);
  execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", "800x600x24",
         "-nolisten", "tcp", nullptr);
  _exit(127);
}

// The line that the server writes when it is ready; empty when it ends instead.
std::string readLine(int pipe) {
  std::string line;
  char character = 0;
  while (read(pipe, &character, 1) == 1 && character != '\n') {
    line += character;
  }
  return line;
}

}  // namespace

Display::Display() {
  int pipes[2];
  if (pipe(pipes) != 0 || (server_ = fork()) < 0) {
    throw std::runtime_error("no process for Xvfb");
  }
  if (server_ == 0) {
    close(pipes[0]);
    runServer(pipes[1]);
  }
  close(pipes[1]);
  const std::string number = readLine(pipes[0]);
  close(pipes[0]);
  if (number.empty()) {
    throw std::runtime_error("Xvfb does not start");
  }
  setenv("DISPLAY", (":" + number).c_str(), 1);
}

Display::~Display() {
  kill(server_, SIGTERM);
  waitpid(server_, nullptr, 0);
}

}  // namespace zantrio::mac_test
