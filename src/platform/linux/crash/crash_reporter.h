#pragma once

#include <sys/types.h>

#include <memory>

#include "platform/linux/crash/crash_messages.h"

namespace zantrio {

class FatalSignals;

// Reports crashes of this process through a watcher, a process forked at the start: a report needs
// only that the crashed process can write to a socket. The watcher ends with this process, however
// it ends.
//
// Ownership: main's, for the life of the process; one per process. Thread: main's.
class CrashReporter {
 public:
  // Forks the watcher, in which this constructor never returns. Call it before any thread exists or
  // file is opened. Without a watcher, crashes are not reported.
  CrashReporter();
  CrashReporter(const CrashReporter&) = delete;
  CrashReporter& operator=(const CrashReporter&) = delete;
  // Restores the signal handlers and waits for the watcher to end.
  ~CrashReporter();

  // The process's reporter, or null.
  static CrashReporter* current();

  // Starts reporting. Call once, on the main thread, which gets an alternate signal stack so that
  // its stack overflows can be reported. Returns false without a watcher.
  bool start(const CrashReportFacts& facts);

 private:
  pid_t watcher_ = -1;
  int socket_ = -1;
  std::unique_ptr<FatalSignals> signals_;
};

}  // namespace zantrio
