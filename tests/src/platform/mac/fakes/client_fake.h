#pragma once

#include <string>
#include <vector>

#include "browser/application_commands.h"

namespace zantrio::mac_test {

// How the browser process and the sub-process, which stand in for the client's, end, and what the
// framework's loader and sandbox answer.
struct ClientFake {
  bool loadsFramework = true;
  bool entersSandbox = true;
  int exitCode = 0;
  std::string failure;  // what they throw, if anything
  std::vector<std::string> arguments;
};

ClientFake& client();

// Records the commands among the calls.
class RecordingCommands : public IApplicationCommands {
 public:
  void openFiles(const std::vector<std::string>& paths) override;
  void newMessage() override;
  void newShare() override;
  void quit() override;
};

}  // namespace zantrio::mac_test
