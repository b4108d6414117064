#include "app/shutdown_signals.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "services/private_pipe.h"

namespace zantrio {
namespace {

constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};
constexpr char kSignalled = 's';
constexpr char kEnd = 'e';

// A signal handler may do little more than write to a pipe. Both ends are set before the handler is
// installed.
int readEnd = -1;
int writeEnd = -1;

void notifyThread(char what) {
  const int savedError = errno;
  [[maybe_unused]] const ssize_t written = write(writeEnd, &what, 1);
  errno = savedError;
}

void onSignal(int /*signal*/) {
  notifyThread(kSignalled);
}

void setHandler(void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  for (const int signal : kSignals) {
    sigaction(signal, &action, nullptr);
  }
}

// False when the object is being destroyed.
bool waitForSignal() {
  char what = kEnd;
  ssize_t length = 0;
  do {
    length = read(readEnd, &what, 1);
  } while (length < 0 && errno == EINTR);
  return length == 1 && what == kSignalled;
}

}  // namespace

ShutdownSignals::ShutdownSignals(std::function<void(bool force)> close) : close_(std::move(close)) {
  std::array<int, 2> ends{};
  if (!openPrivatePipe(ends)) {
    throw std::system_error(errno, std::generic_category(), "cannot watch for signals");
  }
  readEnd = ends[0];
  writeEnd = ends[1];
  thread_ = std::thread([this] { run(); });
  setHandler(onSignal);
}

ShutdownSignals::~ShutdownSignals() {
  setHandler(SIG_DFL);
  notifyThread(kEnd);
  thread_.join();
  ::close(readEnd);
  ::close(writeEnd);
}

void ShutdownSignals::run() {
  if (!waitForSignal()) {
    return;
  }
  close_(false);
  if (!waitForSignal()) {
    return;
  }
  setHandler(SIG_DFL);
  close_(true);
  while (waitForSignal()) {
  }
}

}  // namespace zantrio
