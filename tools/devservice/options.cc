#include "devservice/options.h"

#include <charconv>
#include <map>
#include <stdexcept>

namespace zantrio::devservice {

const char* const kUsage =
    "usage: zantrio-devservice --port N --data DIR --web DIR [OPTION...]\n"
    "Runs a local stand-in for the service, on 127.0.0.1 only.\n"
    "  --port N           port to listen on, 0 for a free one\n"
    "  --data DIR         folder for messages and received files; created if missing\n"
    "  --web DIR          folder of the web application, served under /app\n"
    "  --javascript DIR   folder of jQuery, Underscore and Backbone (/usr/share/javascript)\n"
    "  --url-lifetime S   seconds for which a download URL is valid (3600)\n"
    "  --min-part-size N  minimum bytes of every part of an upload except the last (0)\n"
    "  --no-multipart     refuse multipart uploads\n"
    "  --no-samples       offer no sample messages\n";

namespace {

std::uint16_t parsePort(const std::string& text) {
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    throw std::runtime_error("--port needs a number from 0 to 65535, not \"" + text + "\"");
  }
  return port;
}

std::uint64_t parseNumber(const std::string& name, const std::string& text) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    throw std::runtime_error(name + " needs a whole number, not \"" + text + "\"");
  }
  return number;
}

}  // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
  Options options;
  std::string port;
  std::string urlLifetime = std::to_string(options.urlLifetime);
  std::string minPartSize = std::to_string(options.minPartSize);
  const std::map<std::string, std::string*> targets = {{"--port", &port},
                                                       {"--data", &options.data},
                                                       {"--web", &options.web},
                                                       {"--javascript", &options.javascript},
                                                       {"--url-lifetime", &urlLifetime},
                                                       {"--min-part-size", &minPartSize}};
  const std::map<std::string, bool*> switches = {{"--no-multipart", &options.multipart},
                                                 {"--no-samples", &options.samples}};
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "--help" || arguments[i] == "-h") {
      options.help = true;
      return options;
    }
    if (const auto found = switches.find(arguments[i]); found != switches.end()) {
      *found->second = false;
      continue;
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
  options.urlLifetime = parseNumber("--url-lifetime", urlLifetime);
  options.minPartSize = parseNumber("--min-part-size", minPartSize);
  if (options.data.empty() || options.web.empty()) {
    throw std::runtime_error("--data and --web are needed; --help explains them");
  }
  return options;
}

}  // namespace zantrio::devservice
