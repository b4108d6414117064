#pragma once

#include <Poco/Process.h>

#include <string>

namespace zantrio::test {

// A program that runs while the object lives, and says in its first line how it is reached. The
// constructor throws when there is no such line.
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

// A display of the process's own, which becomes DISPLAY.
class VirtualDisplay {
 public:
  VirtualDisplay();

 private:
  const ServerProcess server_;
};

// A session bus of the process's own, which becomes DBUS_SESSION_BUS_ADDRESS. To be made before
// anything asks for the session bus.
class SessionBus {
 public:
  explicit SessionBus(const std::string& configuration = "--session");

 private:
  const ServerProcess server_;
};

}  // namespace zantrio::test
