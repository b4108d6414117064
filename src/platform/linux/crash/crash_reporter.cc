#include "platform/linux/crash/crash_reporter.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include "platform/linux/crash/crash_watcher.h"
#include "platform/linux/crash/fatal_signals.h"
#include "services/process_preparation.h"

namespace zantrio {
namespace {

CrashReporter* currentReporter = nullptr;

void warnOfNoWatcher() {
  syslog(LOG_USER | LOG_WARNING, "Zantrio: there can be no watcher of crashes: %s",
         std::generic_category().message(errno).c_str());
}

bool sendFacts(int socket, const CrashReportFacts& facts) {
  std::string text;
  for (const std::string* fact : {&facts.appDataFolder, &facts.version, &facts.system}) {
    text += *fact + '\0';
  }
  return send(socket, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
}

}  // namespace

CrashReporter::CrashReporter() {
  currentReporter = this;
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    warnOfNoWatcher();
    return;
  }
  watcher_ = fork();
  if (watcher_ == 0) {
    close(ends[0]);
    CrashWatcher(ends[1]).run();
    // Skips the destructors and exit handlers that were inherited by the fork.
    _exit(0);
  }
  if (watcher_ < 0) {
    warnOfNoWatcher();
  }
  close(ends[1]);
  socket_ = ends[0];
}

CrashReporter::~CrashReporter() {
  currentReporter = nullptr;
  signals_.reset();
  if (socket_ >= 0) {
    close(socket_);
  }
  // The watcher has no work left. Its process id stays valid until it is waited for.
  if (watcher_ > 0 && waitpid(watcher_, nullptr, WNOHANG) == 0) {
    kill(watcher_, SIGKILL);
    while (waitpid(watcher_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
}

CrashReporter* CrashReporter::current() {
  return currentReporter;
}

bool CrashReporter::start(const CrashReportFacts& facts) {
  if (watcher_ < 0 || !sendFacts(socket_, facts)) {
    return false;
  }
  // Allows the watcher to trace this process even where only ancestors may.
  prctl(PR_SET_PTRACER, watcher_, 0, 0, 0);
  signals_ = std::make_unique<FatalSignals>(socket_);
  return true;
}

// Forks the watcher; CPlatformInitLinux starts it.
class ProcessPreparation::Impl {
 private:
  const CrashReporter reporter_;
};

ProcessPreparation::ProcessPreparation() : impl_(std::make_unique<Impl>()) {}

ProcessPreparation::~ProcessPreparation() = default;

}  // namespace zantrio
