#pragma once

#include <string>
#include <vector>

namespace zantrio {

// The options of the command line.
struct StartOptions {
  bool help = false;
  bool version = false;
  bool offScreenRendering = false;
  std::vector<std::string> files;  // as written
  std::string error;               // a sentence for the user; empty when all was understood
};

// `arguments` excludes the program's name. Everything after "--" is a file.
StartOptions parseStartOptions(const std::vector<std::string>& arguments);

}  // namespace zantrio
