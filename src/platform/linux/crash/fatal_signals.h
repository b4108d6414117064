#pragma once

namespace zantrio {

// Handles fatal signals and uncaught exceptions: notifies the watcher at the other end of the
// socket, waits until the report is written (at most kReportLimitSeconds), and passes the signal to
// the previous handler, which ends the process.
//
// The handler is async-signal-safe and allocates nothing. One per process; the caller keeps the
// socket. A stack overflow can be handled only on a thread with an alternate signal stack; the
// constructing thread gets one.
class FatalSignals {
 public:
  static constexpr int kReportLimitSeconds = 20;

  explicit FatalSignals(int socket);
  FatalSignals(const FatalSignals&) = delete;
  FatalSignals& operator=(const FatalSignals&) = delete;
  ~FatalSignals();
};

}  // namespace zantrio
