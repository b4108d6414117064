#include "platform/linux/crash/stopped_threads.h"

#include <sys/ptrace.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include "platform/linux/crash/thread_names.h"

namespace zantrio {
namespace {

constexpr auto kStopLimit = std::chrono::seconds(2);

// A thread inside a system call that cannot be interrupted may not stop for long.
bool waitForStop(pid_t thread, int& status) {
  const auto limit = std::chrono::steady_clock::now() + kStopLimit;
  do {
    const pid_t changed = waitpid(thread, &status, __WALL | WNOHANG);
    if (changed == thread) {
      return WIFSTOPPED(status);
    }
    if (changed < 0 && errno != EINTR) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  } while (std::chrono::steady_clock::now() < limit);
  errno = ETIMEDOUT;
  return false;
}

int signalAtStop(int status) {
  return status >> 16 == PTRACE_EVENT_STOP ? 0 : WSTOPSIG(status);
}

}  // namespace

StoppedThreads::StoppedThreads(pid_t process) {
  // Threads that still run may have started others meanwhile.
  while (stopNewThreads(process)) {
  }
}

StoppedThreads::~StoppedThreads() {
  for (const auto& [thread, signal] : stopped_) {
    ptrace(PTRACE_DETACH, thread, nullptr, signal);
  }
}

std::vector<pid_t> StoppedThreads::threads() const {
  std::vector<pid_t> all;
  for (const auto& [thread, signal] : stopped_) {
    all.push_back(thread);
  }
  return all;
}

bool StoppedThreads::stopNewThreads(pid_t process) {
  bool foundNew = false;
  for (const pid_t thread : threadsOf(process)) {
    if (!stopped_.contains(thread) && !failed_.contains(thread)) {
      foundNew = stop(thread) || foundNew;
    }
  }
  return foundNew;
}

bool StoppedThreads::stop(pid_t thread) {
  int status = 0;
  if (ptrace(PTRACE_SEIZE, thread, nullptr, nullptr) == 0 &&
      ptrace(PTRACE_INTERRUPT, thread, nullptr, nullptr) == 0 && waitForStop(thread, status)) {
    stopped_[thread] = signalAtStop(status);
    return true;
  }
  error_ = std::generic_category().message(errno);
  failed_.insert(thread);
  return false;
}

}  // namespace zantrio
