#include "process/relaunch_message.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace cef_qt {
namespace {

constexpr std::size_t kMaxSize = 4 << 20;
constexpr auto kTimeout = std::chrono::seconds(5);

}  // namespace

// The directory and the arguments, each with a terminating NUL.
std::string encodeRelaunch(const Relaunch& relaunch) {
  std::string text = relaunch.directory + '\0';
  for (const std::string& word : relaunch.argv) {
    text += word;
    text += '\0';
  }
  return text;
}

RelaunchConnection::RelaunchConnection(int socket)
    : socket_(socket), deadline_(Clock::now() + kTimeout) {}

RelaunchConnection::RelaunchConnection(RelaunchConnection&& other) noexcept
    : socket_(std::exchange(other.socket_, -1)),
      deadline_(other.deadline_),
      text_(std::move(other.text_)) {}

RelaunchConnection& RelaunchConnection::operator=(RelaunchConnection&& other) noexcept {
  std::swap(socket_, other.socket_);
  std::swap(deadline_, other.deadline_);
  std::swap(text_, other.text_);
  return *this;
}

RelaunchConnection::~RelaunchConnection() {
  if (socket_ >= 0) {
    close(socket_);
  }
}

RelaunchConnection::State RelaunchConnection::read() {
  std::array<char, 4096> buffer;
  while (text_.size() < kMaxSize) {
    const ssize_t length = recv(socket_, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (length == 0) {
      return State::kComplete;
    }
    if (length < 0 && errno != EINTR) {
      return errno == EAGAIN || errno == EWOULDBLOCK ? State::kReading : State::kBroken;
    }
    if (length > 0) {
      text_.append(buffer.data(), static_cast<std::size_t>(length));
    }
  }
  return State::kBroken;
}

std::optional<Relaunch> RelaunchConnection::message() const {
  if (text_.empty() || text_.back() != '\0') {
    return std::nullopt;
  }
  Relaunch relaunch;
  bool first = true;
  for (std::size_t at = 0; at < text_.size();) {
    std::string word = text_.c_str() + at;
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

void RelaunchConnection::confirm() const {
  send(socket_, "k", 1, MSG_NOSIGNAL | MSG_DONTWAIT);
}

}  // namespace cef_qt
