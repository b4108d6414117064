#pragma once

#include <Poco/Process.h>

#include <string>

namespace zantrio::test {

// A server program that runs while the object lives and prints its address as its first line. The
// constructor throws if there is none.
class ServerProcess {
 public:
  ServerProcess(const std::string& program, const Poco::Process::Args& arguments);
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;
  ~ServerProcess();

  const std::string& firstLine() const { return firstLine_; }

 private:
  std::string firstLine_;
  Poco::ProcessHandle process_;
};

// Starts a virtual display and sets DISPLAY.
class VirtualDisplay {
 public:
  VirtualDisplay();

 private:
  const ServerProcess server_;
};

// Starts a session bus and sets DBUS_SESSION_BUS_ADDRESS. Create it before the first use of the
// session bus.
class SessionBus {
 public:
  explicit SessionBus(const std::string& configuration = "--session");

 private:
  const ServerProcess server_;
};

}  // namespace zantrio::test
