#pragma once

#include <optional>
#include <string>

#include "platform/linux/crash/crash_messages.h"

namespace zantrio {

// The watcher process: waits for its client to crash or end and writes a report of the crash. It
// has left the client's terminal and session and holds only its socket open. Failures to write a
// report go to syslog.
class CrashWatcher {
 public:
  // `socket`: the connection to the client. Construct it in the forked process, which becomes the
  // watcher.
  explicit CrashWatcher(int socket);

  // Returns when the client has ended or the report is written.
  void run();

 private:
  std::optional<std::string> receive() const;
  std::optional<CrashReportFacts> receiveFacts() const;
  std::optional<CrashNotice> receiveNotice() const;
  void release() const;

  const int socket_;
};

}  // namespace zantrio
