#include "platform/linux/crash/process_threads.h"

#include <sys/ptrace.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>

namespace zantrio {
namespace {

constexpr auto kStopLimit = std::chrono::seconds(2);

// A thread in an uninterruptible system call may take long to stop.
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

std::string taskFolder(pid_t process) {
  return "/proc/" + std::to_string(process) + "/task";
}

}  // namespace

std::vector<pid_t> threadsOf(pid_t process) {
  std::vector<pid_t> threads;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(taskFolder(process), error), end;
       !error && entry != end; entry.increment(error)) {
    threads.push_back(static_cast<pid_t>(std::atol(entry->path().filename().c_str())));
  }
  std::sort(threads.begin(), threads.end());
  return threads;
}

std::string nameThread(pid_t process, pid_t thread) {
  const std::string number = std::to_string(thread);
  std::ifstream file(taskFolder(process) + "/" + number + "/comm");
  std::string name;
  return std::getline(file, name) ? number + " (" + name + ")" : number;
}

StoppedThreads::StoppedThreads(pid_t process) {
  // Threads that are still running may start others.
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
