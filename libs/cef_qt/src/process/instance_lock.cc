#include "process/instance_lock.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

namespace cef_qt {
namespace {

constexpr char kLockName[] = "instance.lock";
constexpr char kSocketName[] = "instance.socket";
constexpr std::size_t kMaxMessageSize = 4 << 20;
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

// A message is the directory and the arguments, each with a terminating NUL.
std::string encode(const InstanceLock::Relaunch& relaunch) {
  std::string text = relaunch.directory + '\0';
  for (const std::string& word : relaunch.argv) {
    text += word;
    text += '\0';
  }
  return text;
}

std::optional<InstanceLock::Relaunch> decode(const std::string& text) {
  if (text.empty() || text.back() != '\0') {
    return std::nullopt;
  }
  InstanceLock::Relaunch relaunch;
  bool first = true;
  for (std::size_t at = 0; at < text.size();) {
    std::string word = text.c_str() + at;
    at += word.size() + 1;
    if (first) {
      relaunch.directory = std::move(word);
      first = false;
    } else {
      relaunch.argv.push_back(std::move(word));
    }
  }
  return relaunch;
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
  socketFd_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  wakeFd_ = eventfd(0, EFD_CLOEXEC);
  const sockaddr_un address = addressIn(folderFd_);
  if (bind(socketFd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(socketFd_, SOMAXCONN) != 0) {
    std::fprintf(stderr, "%s: later processes cannot be heard (%s).\n", folder_.c_str(),
                 std::generic_category().message(errno).c_str());
    return;
  }
  server_ = std::thread([this] { serve(); });
}

void InstanceLock::serve() {
  std::array<pollfd, 2> watched{pollfd{socketFd_, POLLIN, 0}, pollfd{wakeFd_, POLLIN, 0}};
  while (poll(watched.data(), watched.size(), -1) >= 0 || errno == EINTR) {
    if (watched[1].revents) {
      return;
    }
    if (watched[0].revents) {
      const int connection = accept4(socketFd_, nullptr, nullptr, SOCK_CLOEXEC);
      if (connection >= 0) {
        receive(connection);
        close(connection);
      }
    }
  }
}

void InstanceLock::receive(int connection) const {
  setTimeouts(connection);
  std::string text;
  std::array<char, 4096> buffer;
  ssize_t length = 0;
  while (text.size() < kMaxMessageSize &&
         (length = recv(connection, buffer.data(), buffer.size(), 0)) > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(length));
  }
  const auto relaunch = length == 0 ? decode(text) : std::nullopt;
  if (relaunch) {
    onRelaunch_(*relaunch);
    sendAll(connection, "k");
  }
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
      sendAll(fd, encode(self)) && shutdown(fd, SHUT_WR) == 0 && recv(fd, &reply, 1, 0) == 1;
  close(fd);
  return notified;
}

}  // namespace cef_qt
