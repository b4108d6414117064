#pragma once

#include <functional>
#include <thread>

namespace zantrio {

// Turns the signals that ask a program to end (SIGTERM, SIGINT, SIGHUP) into calls: the first into
// close(false), the second into close(true). From the third on they end the process.
//
// `close` is called on a thread of this object's own. One at a time in a process; its destruction
// gives the signals back and waits for the thread.
class ShutdownSignals {
 public:
  explicit ShutdownSignals(std::function<void(bool force)> close);
  ShutdownSignals(const ShutdownSignals&) = delete;
  ShutdownSignals& operator=(const ShutdownSignals&) = delete;
  ~ShutdownSignals();

 private:
  void run();

  const std::function<void(bool)> close_;
  std::thread thread_;
};

}  // namespace zantrio
