#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

namespace zantrio {

// What passes between the client and its watcher over a socket that keeps messages apart: first the
// facts, as three texts each ended by NUL; at a crash a CrashNotice; then one byte of any value
// back, when the report is written. The end of the socket is the end of the client.

// What the watcher is to know before a crash.
struct CrashReportFacts {
  std::string appDataFolder;  // ends with a slash
  std::string version;
  std::string system;
};

// What the crashed thread tells, from its signal handler.
struct CrashNotice {
  pid_t process;
  pid_t thread;
  int signal;
  int code;                // the signal's si_code
  pid_t sender;            // of a signal that a process has sent
  std::uintptr_t address;  // where a fault happened
  char note[512];          // what an uncaught exception says, ended by NUL; else empty
};

}  // namespace zantrio
