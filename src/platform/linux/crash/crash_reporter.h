#pragma once

#include <sys/types.h>

#include <memory>

#include "platform/linux/crash/crash_messages.h"

namespace zantrio {

class FatalSignals;

// Writes a report when this process crashes, by way of a watcher: a process of its own that is
// forked while all is well, so that a report needs nothing of the crashed process but that it can
// write to a socket. The watcher ends with this process, however it ends.
//
// Ownership: main's, for the life of the process; one a process. Thread: main's.
class CrashReporter {
 public:
  // Forks the watcher, which never returns from here. To be called before any thread exists and
  // anything is opened. Where there can be no watcher, there are no reports.
  CrashReporter();
  CrashReporter(const CrashReporter&) = delete;
  CrashReporter& operator=(const CrashReporter&) = delete;
  // Gives the signals back and waits for the watcher's end.
  ~CrashReporter();

  // The process's reporter; null where there is none.
  static CrashReporter* current();

  // From here on crashes are reported. Called once, on the main thread, whose stack may overflow:
  // it gets another one for signals. False when there is no watcher.
  bool start(const CrashReportFacts& facts);

 private:
  pid_t watcher_ = -1;
  int socket_ = -1;
  std::unique_ptr<FatalSignals> signals_;
};

}  // namespace zantrio
