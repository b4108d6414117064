#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zantrio::devservice {

struct Options {
  std::uint16_t port = 0;                            // 0: a free one
  std::string data;                                  // folder of what arrives
  std::string web;                                   // folder of the web application
  std::string javascript = "/usr/share/javascript";  // Debian's JavaScript libraries
  std::uint64_t urlLifetime = 3600;                  // of addresses for downloads, seconds
  std::uint64_t smallestPart = 0;  // bytes that all parts but the last of an upload must have
  bool multipart = true;           // whether uploads in parts are offered
  bool samples = true;             // whether there are messages to fetch from the beginning
  bool help = false;
};

extern const char* const kUsage;

// Reads the command line (without the program's name).
// Throws std::runtime_error with one line for the user.
Options parseOptions(const std::vector<std::string>& arguments);

}  // namespace zantrio::devservice
