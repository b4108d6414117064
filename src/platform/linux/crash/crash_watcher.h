#pragma once

#include <optional>
#include <string>

#include "platform/linux/crash/crash_messages.h"

namespace zantrio {

// The watcher process's whole life: it waits for its client's crash or end and writes a report of
// the crash. It has left the client's terminal and session and has nothing open but its socket.
// What keeps it from writing a report is told to the system's log.
class CrashWatcher {
 public:
  // `socket`: the connection with the client. To be made in the forked process, which becomes the
  // watcher with it.
  explicit CrashWatcher(int socket);

  // Returns when there is nothing left to do.
  void run();

 private:
  std::optional<std::string> receive() const;
  std::optional<CrashReportFacts> receiveFacts() const;
  std::optional<CrashNotice> receiveNotice() const;
  void release() const;

  const int socket_;
};

}  // namespace zantrio
