#include "app/start_options.h"

namespace zantrio {
namespace {

// A single dash names no file either: nothing is read from the standard input.
bool isOption(const std::string& argument) {
  return argument.starts_with('-');
}

void readOption(const std::string& argument, StartOptions& options) {
  if (argument == "--help") {
    options.help = true;
  } else if (argument == "--version") {
    options.version = true;
  } else if (argument == "--off-screen-rendering") {
    options.offScreenRendering = true;
  } else {
    options.error = "unknown option '" + argument + "'; zantrio --help tells what there is";
  }
}

}  // namespace

StartOptions parseStartOptions(const std::vector<std::string>& arguments) {
  StartOptions options;
  bool onlyFiles = false;
  for (const std::string& argument : arguments) {
    if (onlyFiles || !isOption(argument)) {
      options.files.push_back(argument);
    } else if (argument == "--") {
      onlyFiles = true;
    } else {
      readOption(argument, options);
    }
  }
  return options;
}

}  // namespace zantrio
