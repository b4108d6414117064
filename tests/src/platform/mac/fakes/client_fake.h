#pragma once

#include <functional>
#include <string>
#include <vector>

#include "browser/application_commands.h"

namespace zantrio::mac_test {

// The results of the fake browser process and sub-process, and of the framework's loader and
// sandbox.
struct ClientRecord {
  bool loadsFramework = true;
  bool entersSandbox = true;
  int exitCode = 0;
  std::string failure;  // what they throw, if anything
  std::vector<std::string> arguments;
};

ClientRecord& client();

// The text of the standard exception that `call` throws; empty when it throws none. Objective-C's
// runtime here lets no C++ exception be caught in its own files.
std::string textThrownBy(const std::function<void()>& call);

// Records the commands among the calls.
class RecordingCommands : public IApplicationCommands {
 public:
  void openFiles(const std::vector<std::string>& paths) override;
  void newMessage() override;
  void newShare() override;
  void quit() override;
};

}  // namespace zantrio::mac_test
