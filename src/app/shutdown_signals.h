#pragma once

#include <functional>
#include <thread>

namespace zantrio {

// Turns the termination signals (SIGTERM, SIGINT, SIGHUP) into calls: close(false) for the first,
// close(true) for the second. Later ones end the process.
//
// `close` is called on a thread of this object. One instance at a time in a process; the destructor
// restores the default handling of the signals and joins the thread.
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
