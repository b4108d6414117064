#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zantrio::devservice {

struct Options {
  std::uint16_t port = 0;                            // 0: a free one
  std::string data;                                  // folder of received files
  std::string web;                                   // folder of the web application
  std::string javascript = "/usr/share/javascript";  // Debian's JavaScript libraries
  std::uint64_t urlLifetime = 3600;                  // of download URLs, seconds
  std::uint64_t minPartSize = 0;  // minimum bytes of every part of an upload except the last
  bool multipart = true;          // whether multipart uploads are offered
  bool samples = true;            // whether sample messages are offered
  bool help = false;
};

extern const char* const kUsage;

// Reads the command line (without the program's name).
// Throws std::runtime_error with one line for the user.
Options parseOptions(const std::vector<std::string>& arguments);

}  // namespace zantrio::devservice
