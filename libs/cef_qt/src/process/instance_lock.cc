#include "process/instance_lock.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "process/peer_user.h"

namespace cef_qt {
namespace {

constexpr char kLockName[] = "instance.lock";
constexpr char kSocketName[] = "instance.socket";
constexpr std::size_t kMaxConnections = 64;
constexpr timeval kSocketTimeout{5, 0};
constexpr auto kLockTimeout = std::chrono::seconds(10);

// The socket's address through the open folder, because its path may be too long for an address.
sockaddr_un addressIn(int folderFd) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", folderFd,
                kSocketName);
  return address;
}

void setTimeouts(int fd) {
  setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &kSocketTimeout, sizeof kSocketTimeout);
  setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &kSocketTimeout, sizeof kSocketTimeout);
}

bool sendAll(int fd, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t sent = send(fd, text.data() + done, text.size() - done, MSG_NOSIGNAL);
    if (sent <= 0) {
      return false;
    }
    done += static_cast<std::size_t>(sent);
  }
  return true;
}

// For poll; -1: for ever.
int millisecondsUntil(RelaunchConnection::Clock::time_point time) {
  if (time == RelaunchConnection::Clock::time_point::max()) {
    return -1;
  }
  const auto rest =
      std::chrono::ceil<std::chrono::milliseconds>(time - RelaunchConnection::Clock::now());
  return std::max(0, static_cast<int>(rest.count()));
}

}  // namespace

std::string currentDirectory() {
  std::error_code error;
  const auto path = std::filesystem::current_path(error);
  return error ? std::string() : path.string();
}

InstanceLock::~InstanceLock() {
  if (server_.joinable()) {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(wakeFd_, &one, sizeof one);
    server_.join();
    unlinkat(folderFd_, kSocketName, 0);
  }
  for (const int fd : {socketFd_, wakeFd_, lockFd_, folderFd_}) {
    if (fd >= 0) {
      close(fd);
    }
  }
}

InstanceLock::Outcome InstanceLock::acquire(const Relaunch& self,
                                            std::function<void(const Relaunch&)> onRelaunch) {
  onRelaunch_ = std::move(onRelaunch);
  folderFd_ = open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  lockFd_ = folderFd_ < 0 ? -1 : openat(folderFd_, kLockName, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lockFd_ < 0) {
    std::fprintf(stderr, "%s: there can be no instance lock (%s).\n", folder_.c_str(),
                 std::generic_category().message(errno).c_str());
    return Outcome::kUnlocked;
  }
  // A holder that is starting or exiting has the lock but no socket.
  const auto deadline = std::chrono::steady_clock::now() + kLockTimeout;
  do {
    if (tryLock()) {
      listen();
      return Outcome::kAcquired;
    }
    if (notifyHolder(self)) {
      return Outcome::kOtherNotified;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  } while (std::chrono::steady_clock::now() < deadline);
  std::fprintf(stderr, "%s is used by another process that does not answer.\n", folder_.c_str());
  return Outcome::kOtherNotified;
}

bool InstanceLock::tryLock() {
  return flock(lockFd_, LOCK_EX | LOCK_NB) == 0;
}

void InstanceLock::listen() {
  unlinkat(folderFd_, kSocketName, 0);
  socketFd_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  wakeFd_ = eventfd(0, EFD_CLOEXEC);
  // Before the name exists, and without the process's mask, which other threads use.
  fchmod(socketFd_, S_IRUSR | S_IWUSR);
  const sockaddr_un address = addressIn(folderFd_);
  if (bind(socketFd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(socketFd_, SOMAXCONN) != 0) {
    std::fprintf(stderr, "%s: later processes cannot be heard (%s).\n", folder_.c_str(),
                 std::generic_category().message(errno).c_str());
    return;
  }
  server_ = std::thread([this] { serve(); });
}

// All connections at once, so that a silent one holds nobody up.
void InstanceLock::serve() {
  using Clock = RelaunchConnection::Clock;
  std::vector<RelaunchConnection> connections;
  while (true) {
    std::vector<pollfd> watched{{wakeFd_, POLLIN, 0}, {socketFd_, POLLIN, 0}};
    auto deadline = Clock::time_point::max();
    for (const RelaunchConnection& connection : connections) {
      watched.push_back({connection.socket(), POLLIN, 0});
      deadline = std::min(deadline, connection.deadline());
    }
    if (poll(watched.data(), watched.size(), millisecondsUntil(deadline)) < 0 && errno != EINTR) {
      return;
    }
    if (watched[0].revents != 0) {
      return;
    }
    std::erase_if(connections, [this](RelaunchConnection& connection) {
      return hasEnded(connection) || connection.deadline() <= Clock::now();
    });
    if (watched[1].revents != 0) {
      accept(connections);
    }
  }
}

void InstanceLock::accept(std::vector<RelaunchConnection>& connections) const {
  const int socket = accept4(socketFd_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
  if (socket < 0) {
    return;
  }
  RelaunchConnection connection(socket);
  if (!isOfThisUser(socket)) {
    return;
  }
  if (connections.size() >= kMaxConnections) {
    connections.erase(connections.begin());
  }
  connections.push_back(std::move(connection));
}

bool InstanceLock::hasEnded(RelaunchConnection& connection) const {
  const auto state = connection.read();
  const auto message =
      state == RelaunchConnection::State::kComplete ? connection.message() : std::nullopt;
  if (message) {
    onRelaunch_(*message);
    connection.confirm();
  }
  return state != RelaunchConnection::State::kReading;
}

bool InstanceLock::notifyHolder(const Relaunch& self) const {
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) {
    return false;
  }
  setTimeouts(fd);
  const sockaddr_un address = addressIn(folderFd_);
  char reply = 0;
  const bool notified =
      connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
      isOfThisUser(fd) && sendAll(fd, encodeRelaunch(self)) && shutdown(fd, SHUT_WR) == 0 &&
      recv(fd, &reply, 1, 0) == 1;
  close(fd);
  return notified;
}

}  // namespace cef_qt
