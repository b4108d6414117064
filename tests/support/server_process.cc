#include "support/server_process.h"

#include <Poco/Environment.h>
#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <signal.h>

#include <stdexcept>

namespace zantrio::test {
namespace {

Poco::ProcessHandle launch(const std::string& program, const Poco::Process::Args& arguments,
                           std::string& firstLine) {
  Poco::Pipe output;
  Poco::ProcessHandle process =
      Poco::Process::launch(program, arguments, nullptr, &output, nullptr);
  Poco::PipeInputStream stream(output);
  if (!std::getline(stream, firstLine)) {
    throw std::runtime_error(program + " does not start");
  }
  return process;
}

}  // namespace

ServerProcess::ServerProcess(const std::string& program, const Poco::Process::Args& arguments)
    : process_(launch(program, arguments, firstLine_)) {}

ServerProcess::~ServerProcess() {
  kill(process_.id(), SIGTERM);
  process_.wait();
}

VirtualDisplay::VirtualDisplay()
    : server_("Xvfb", {"-displayfd", "1", "-screen", "0", "800x600x24", "-nolisten", "tcp"}) {
  Poco::Environment::set("DISPLAY", ":" + server_.firstLine());
}

SessionBus::SessionBus(const std::string& configuration)
    : server_("dbus-daemon", {configuration, "--nofork", "--print-address=1"}) {
  Poco::Environment::set("DBUS_SESSION_BUS_ADDRESS", server_.firstLine());
}

}  // namespace zantrio::test
