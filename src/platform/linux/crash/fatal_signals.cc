#include "platform/linux/crash/fatal_signals.h"

#include <cxxabi.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <typeinfo>

#include "platform/linux/crash/crash_messages.h"

namespace zantrio {
namespace {

constexpr std::array kSignals = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP};
constexpr std::size_t kSignalStackSize = 64 * 1024;

// All of these are set before the handlers are.
int watcherSocket = -1;
pid_t owner = -1;
std::array<struct sigaction, kSignals.size()> previousActions;
std::terminate_handler previousTerminate = nullptr;
alignas(16) std::array<char, kSignalStackSize> signalStack;

std::atomic_flag crashed = ATOMIC_FLAG_INIT;
// Static, as a signal's stack may be small.
CrashNotice notice{};

long millisecondsNow() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1000 + now.tv_nsec / 1'000'000;
}

// Waits until the socket is readable, or for the report's time limit. With a negative socket it
// only waits. The watcher's ptrace interrupts system calls, hence the loop.
void waitForReport(int socket) {
  const long end = millisecondsNow() + FatalSignals::kReportLimitSeconds * 1000L;
  pollfd watched{socket, POLLIN, 0};
  for (long left = end - millisecondsNow(); left > 0; left = end - millisecondsNow()) {
    const int ready = poll(&watched, 1, static_cast<int>(left));
    if (ready > 0 || (ready < 0 && errno != EINTR)) {
      return;
    }
  }
}

void report(int signal, const siginfo_t& info) {
  notice.process = owner;
  notice.thread = static_cast<pid_t>(syscall(SYS_gettid));
  notice.signal = signal;
  notice.code = info.si_code;
  if (info.si_code <= 0) {
    notice.sender = info.si_pid;
  } else {
    notice.address = reinterpret_cast<std::uintptr_t>(info.si_addr);
  }
  if (send(watcherSocket, &notice, sizeof notice, MSG_NOSIGNAL | MSG_DONTWAIT) ==
      static_cast<ssize_t>(sizeof notice)) {
    waitForReport(watcherSocket);
  }
}

void restorePreviousActions() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], &previousActions[i], nullptr);
  }
}

// The signal is blocked until the handler returns; then it is delivered again.
void raiseAgain(int signal, siginfo_t* info) {
  const auto thread = syscall(SYS_gettid);
  if (syscall(SYS_rt_tgsigqueueinfo, getpid(), thread, signal, info) != 0) {
    syscall(SYS_tgkill, getpid(), thread, signal);
  }
}

void onFatalSignal(int signal, siginfo_t* info, void* /*context*/) {
  const int savedError = errno;
  // A forked child that has not called exec is not watched.
  if (getpid() == owner) {
    if (!crashed.test_and_set()) {
      report(signal, *info);
    } else {
      waitForReport(-1);  // another thread is reporting and will end the process
    }
  }
  restorePreviousActions();
  raiseAgain(signal, info);
  errno = savedError;
}

void noteException(const char* type, const char* text) {
  int status = 0;
  char* const readable = abi::__cxa_demangle(type, nullptr, nullptr, &status);
  std::snprintf(notice.note, sizeof notice.note, "uncaught exception %s: %s",
                readable ? readable : type, text);
  std::free(readable);
}

// Nothing has been unwound, so the stack still shows where the exception was thrown.
void onTerminate() {
  if (const std::type_info* const type = abi::__cxa_current_exception_type()) {
    try {
      throw;
    } catch (const std::exception& exception) {
      noteException(type->name(), exception.what());
    } catch (...) {
      noteException(type->name(), "no description");
    }
  }
  previousTerminate();
  std::abort();
}

void installSignalStack() {
  stack_t existing{};
  if (sigaltstack(nullptr, &existing) == 0 && !(existing.ss_flags & SS_DISABLE)) {
    return;  // a sanitizer's
  }
  stack_t stack{};
  stack.ss_sp = signalStack.data();
  stack.ss_size = signalStack.size();
  sigaltstack(&stack, nullptr);
}

}  // namespace

FatalSignals::FatalSignals(int socket) {
  watcherSocket = socket;
  owner = getpid();
  installSignalStack();
  struct sigaction action {};
  action.sa_sigaction = onFatalSignal;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  // A second fault inside the handler ends the process at once.
  sigemptyset(&action.sa_mask);
  for (const int signal : kSignals) {
    sigaddset(&action.sa_mask, signal);
  }
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], &action, &previousActions[i]);
  }
  previousTerminate = std::set_terminate(onTerminate);
}

FatalSignals::~FatalSignals() {
  std::set_terminate(previousTerminate);
  restorePreviousActions();
}

}  // namespace zantrio
