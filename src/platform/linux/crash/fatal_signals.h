#pragma once

namespace zantrio {

// Catches the signals with which a program crashes, and uncaught exceptions: tells the watcher at
// the other end of the socket, waits until it has written its report (at most kReportLimitSeconds),
// and lets what was set for the signal before take its course, which is the process's end.
//
// What runs in the crashed process is safe in a signal handler and takes no memory. One a process;
// the socket stays the caller's. A thread that overflows its stack can only be caught when it has
// another stack for signals; the thread that makes this object is given one.
class FatalSignals {
 public:
  static constexpr int kReportLimitSeconds = 20;

  explicit FatalSignals(int socket);
  FatalSignals(const FatalSignals&) = delete;
  FatalSignals& operator=(const FatalSignals&) = delete;
  ~FatalSignals();
};

}  // namespace zantrio
