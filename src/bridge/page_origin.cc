#include "bridge/page_origin.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace zantrio {
namespace {

constexpr std::uint16_t kHttpPort = 80;
constexpr std::uint16_t kHttpsPort = 443;

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return lower;
}

// A browser decodes, converts or refuses other characters.
bool isHostCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_';
}

std::optional<std::string> parseIpv6(const std::string& text) {
  in6_addr address{};
  std::array<char, INET6_ADDRSTRLEN> shortest{};
  if (inet_pton(AF_INET6, text.c_str(), &address) != 1 ||
      inet_ntop(AF_INET6, &address, shortest.data(), shortest.size()) == nullptr) {
    return std::nullopt;
  }
  return std::string(shortest.data());
}

std::optional<std::string> parseName(const std::string& text) {
  const bool isName = !text.empty() && std::all_of(text.begin(), text.end(), isHostCharacter);
  return isName ? std::optional(text) : std::nullopt;
}

// `text`: nothing, or a colon and perhaps a number.
std::optional<std::uint16_t> parsePort(std::string_view text, std::uint16_t defaultPort) {
  if (text.empty() || text == ":") {
    return defaultPort;
  }
  constexpr std::size_t kMaxLength = 6;
  if (text[0] != ':' || text.size() > kMaxLength) {
    return std::nullopt;
  }
  unsigned port = 0;
  for (const char digit : text.substr(1)) {
    if (digit < '0' || digit > '9') {
      return std::nullopt;
    }
    port = port * 10 + static_cast<unsigned>(digit - '0');
  }
  if (port == 0 || port > UINT16_MAX) {
    return std::nullopt;
  }
  return static_cast<std::uint16_t>(port);
}

// The host and port behind the user's name, if one is given.
std::string_view authorityOf(std::string_view afterScheme) {
  const std::string_view authority = afterScheme.substr(0, afterScheme.find_first_of("/?#"));
  const std::size_t user = authority.rfind('@');
  return user == std::string_view::npos ? authority : authority.substr(user + 1);
}

}  // namespace

std::optional<PageOrigin> pageOriginOf(const std::string& url) {
  constexpr std::string_view kSeparator = "://";
  const std::size_t separator = url.find(kSeparator);
  if (separator == std::string::npos) {
    return std::nullopt;
  }
  // Browsers read a backslash as a slash, and never write one there.
  if (url.find('\\') < url.find_first_of("/?#", separator + kSeparator.size())) {
    return std::nullopt;
  }
  const std::string scheme = lowerCase(std::string_view(url).substr(0, separator));
  if (scheme != "http" && scheme != "https") {
    return std::nullopt;
  }
  const std::string_view authority =
      authorityOf(std::string_view(url).substr(separator + kSeparator.size()));
  const bool isIpv6 = !authority.empty() && authority[0] == '[';
  const std::size_t end = authority.find(isIpv6 ? ']' : ':');
  if (isIpv6 && end == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string name = lowerCase(authority.substr(isIpv6 ? 1 : 0, isIpv6 ? end - 1 : end));
  const auto host = isIpv6 ? parseIpv6(name) : parseName(name);
  const std::size_t hostEnd = std::min(isIpv6 ? end + 1 : end, authority.size());
  const auto port = parsePort(authority.substr(hostEnd), scheme == "http" ? kHttpPort : kHttpsPort);
  if (!host || !port) {
    return std::nullopt;
  }
  return PageOrigin{scheme, *host, *port};
}

}  // namespace zantrio
