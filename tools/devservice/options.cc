#include "devservice/options.h"

#include <charconv>
#include <map>
#include <stdexcept>

namespace zantrio::devservice {

const char* const kUsage =
    "usage: zantrio-devservice --port N --data DIR --web DIR [--javascript DIR]\n"
    "A local stand-in for the service, on 127.0.0.1 only.\n"
    "  --port N           port to listen on, 0 for a free one\n"
    "  --data DIR         where messages and the files that arrive are kept; created if missing\n"
    "  --web DIR          folder of the web application, served under /app\n"
    "  --javascript DIR   folder of jQuery, Underscore and Backbone (/usr/share/javascript)\n";

namespace {

std::uint16_t parsePort(const std::string& text) {
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    throw std::runtime_error("--port needs a number from 0 to 65535, not \"" + text + "\"");
  }
  return port;
}

}  // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
  Options options;
  std::string port;
  const std::map<std::string, std::string*> targets = {{"--port", &port},
                                                       {"--data", &options.data},
                                                       {"--web", &options.web},
                                                       {"--javascript", &options.javascript}};
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "--help" || arguments[i] == "-h") {
      options.help = true;
      return options;
    }
    const auto target = targets.find(arguments[i]);
    if (target == targets.end()) {
      throw std::runtime_error("unknown argument \"" + arguments[i] + "\"; --help lists them");
    }
    if (++i == arguments.size()) {
      throw std::runtime_error(target->first + " needs a value");
    }
    *target->second = arguments[i];
  }
  options.port = parsePort(port);
  if (options.data.empty() || options.web.empty()) {
    throw std::runtime_error("--data and --web are needed; --help explains them");
  }
  return options;
}

}  // namespace zantrio::devservice
