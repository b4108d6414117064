#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

namespace zantrio {

// Messages between the client and its watcher, over a SOCK_SEQPACKET socket: the facts, as three
// NUL-terminated texts; on a crash, a CrashNotice; then one byte back when the report is written. A
// closed socket means that the client ended.

// Sent to the watcher before any crash.
struct CrashReportFacts {
  std::string appDataFolder;  // ends with a slash
  std::string version;
  std::string system;
};

// Sent by the crashed thread from its signal handler.
struct CrashNotice {
  pid_t process;
  pid_t thread;
  int signal;
  int code;                // the signal's si_code
  pid_t sender;            // for signals sent by a process
  std::uintptr_t address;  // of the fault
  char note[512];          // the uncaught exception, NUL-terminated; else empty
};

}  // namespace zantrio
