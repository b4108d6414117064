#include "platform/linux/crash/crash_watcher.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "platform/linux/crash/crash_report.h"

namespace zantrio {
namespace {

constexpr std::size_t kMaxMessageSize = 64 * 1024;
constexpr int kFirstFreeFd = 3;

// Redirects the standard streams to /dev/null and closes everything except the socket.
void leaveOpenOnly(int socket) {
  const int nowhere = open("/dev/null", O_RDWR);
  for (int fd = 0; fd < kFirstFreeFd; ++fd) {
    dup2(nowhere, fd);
  }
  if (socket > kFirstFreeFd) {
    close_range(kFirstFreeFd, static_cast<unsigned>(socket) - 1, 0);
  }
  close_range(static_cast<unsigned>(socket) + 1, ~0U, 0);
}

void becomeWatcher(int socket) {
  prctl(PR_SET_NAME, "zantrio-watcher");
  // Detaches from the client's terminal and process group, and their signals.
  setsid();
  leaveOpenOnly(socket);
  [[maybe_unused]] const int moved = chdir("/");  // keeps no file system busy
  umask(S_IRWXG | S_IRWXO);
  // Looks up symbols locally, never on a server.
  unsetenv("DEBUGINFOD_URLS");  // NOLINT(concurrency-mt-unsafe): the only thread
}

}  // namespace

CrashWatcher::CrashWatcher(int socket) : socket_(socket) {
  becomeWatcher(socket);
}

void CrashWatcher::run() {
  const auto facts = receiveFacts();
  const auto notice = facts ? receiveNotice() : std::nullopt;
  if (!notice) {
    return;  // the client has ended
  }
  try {
    writeCrashReport(*facts, *notice);
  } catch (const std::exception& exception) {
    syslog(LOG_USER | LOG_ERR, "Zantrio: the crash report could not be written: %s",
           exception.what());
  }
  release();
}

std::optional<std::string> CrashWatcher::receive() const {
  std::string message(kMaxMessageSize, '\0');
  ssize_t length = 0;
  do {
    length = recv(socket_, message.data(), message.size(), 0);
  } while (length < 0 && errno == EINTR);
  if (length <= 0) {
    return std::nullopt;
  }
  message.resize(static_cast<std::size_t>(length));
  return message;
}

std::optional<CrashReportFacts> CrashWatcher::receiveFacts() const {
  const auto message = receive();
  if (!message) {
    return std::nullopt;
  }
  CrashReportFacts facts;
  std::size_t begin = 0;
  for (std::string* fact : {&facts.appDataFolder, &facts.version, &facts.system}) {
    const std::size_t end = message->find('\0', begin);
    if (end == std::string::npos) {
      return std::nullopt;
    }
    *fact = message->substr(begin, end - begin);
    begin = end + 1;
  }
  return facts;
}

std::optional<CrashNotice> CrashWatcher::receiveNotice() const {
  const auto message = receive();
  if (!message || message->size() != sizeof(CrashNotice)) {
    return std::nullopt;
  }
  CrashNotice notice{};
  std::memcpy(&notice, message->data(), sizeof notice);
  return notice;
}

void CrashWatcher::release() const {
  const char done = 'd';
  send(socket_, &done, sizeof done, MSG_NOSIGNAL);
}

}  // namespace zantrio
