#pragma once

#include <string>
#include <vector>

namespace zantrio {

// What the user asked for on the command line.
struct StartOptions {
  bool help = false;
  bool version = false;
  bool offScreenRendering = false;
  std::vector<std::string> files;  // as written
  std::string error;               // a sentence for the user; empty when all was understood
};

// `arguments` without the program's name. What follows "--" are files, whatever they begin with.
StartOptions parseStartOptions(const std::vector<std::string>& arguments);

}  // namespace zantrio
