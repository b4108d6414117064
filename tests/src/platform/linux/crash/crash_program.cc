// Starts the crash reporter and crashes in the given way: crash_program DATA_FOLDER WAY.
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/linux/crash/crash_reporter.h"

namespace {

// Keeps the functions in the report's stacks, and lets undefined behaviour crash.
#define NAMED [[gnu::noinline, gnu::noclone, gnu::no_sanitize("undefined")]]

volatile int sink = 0;
volatile int* volatile nowhere = nullptr;

NAMED void writeToNowhere() {
  *nowhere = 1;
  sink = sink + 1;
}

NAMED void faultOnSecondThread() {
  std::thread([] { writeToNowhere(); }).join();
}

NAMED int recurse(int depth) {  // NOLINT(misc-no-recursion)
  volatile char room[1024];
  room[0] = static_cast<char>(depth);
  return sink < 0 ? 0 : recurse(depth + 1) + room[0];
}

NAMED void overflowStack() {
  sink = recurse(0);
}

NAMED void throwUncaught() {
  throw std::runtime_error("nobody catches this");
}

NAMED void faultOnTwoThreadsAtOnce() {
  std::thread first([] { writeToNowhere(); });
  std::thread second([] { writeToNowhere(); });
  first.join();
  second.join();
}

NAMED void crashInForkedChild() {
  if (fork() == 0) {
    writeToNowhere();
  }
}

// Until the test closes standard input.
NAMED void waitForInput() {
  std::puts("ready");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
}

const std::map<std::string, void (*)()> kWays = {
    {"fault", writeToNowhere},
    {"second-thread", faultOnSecondThread},
    {"overflow", overflowStack},
    {"exception", throwUncaught},
    {"abort", [] { std::abort(); }},
    {"two-threads", faultOnTwoThreadsAtOnce},
    {"forked-child", crashInForkedChild},
    {"wait", waitForInput},
};

}  // namespace

int main(int argc, char** argv) {
  zantrio::CrashReporter reporter;
  if (argc != 3 || !kWays.contains(argv[2])) {
    return 2;
  }
  const rlimit noCore{0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  if (!reporter.start({argv[1], "1.2.3", "Test System 4.5"})) {
    return 3;
  }
  kWays.at(argv[2])();
  return 0;
}
