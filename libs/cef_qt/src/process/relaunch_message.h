// What a later process tells the one that holds the instance lock.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace cef_qt {

struct Relaunch {
  std::vector<std::string> argv;
  std::string directory;
};

std::string encodeRelaunch(const Relaunch& relaunch);

// A connection on which a later process sends its message and ends its side. Never blocks.
class RelaunchConnection {
 public:
  using Clock = std::chrono::steady_clock;
  enum class State { kReading, kComplete, kBroken };

  // Takes over the socket, which does not block.
  explicit RelaunchConnection(int socket);
  RelaunchConnection(RelaunchConnection&& other) noexcept;
  RelaunchConnection& operator=(RelaunchConnection&& other) noexcept;
  ~RelaunchConnection();

  int socket() const { return socket_; }
  Clock::time_point deadline() const { return deadline_; }
  // Reads what has arrived.
  State read();
  // The complete message; none if it is none.
  std::optional<Relaunch> message() const;
  void confirm() const;

 private:
  int socket_;
  Clock::time_point deadline_;
  std::string text_;
};

}  // namespace cef_qt
