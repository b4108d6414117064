#include "base/url_parts.h"

#include <algorithm>
#include <utility>

#include "base/ascii.h"

namespace zt_transfers {
namespace {

struct UrlPieces {
  std::string_view scheme;
  std::string_view authority;  // without user information
  std::string_view path;       // without query and fragment
};

UrlPieces piecesOf(std::string_view url) {
  UrlPieces pieces;
  url = url.substr(0, url.find_first_of("?#"));
  const auto schemeEnd = url.find("://");
  if (schemeEnd == std::string_view::npos) {
    pieces.path = url;
    return pieces;
  }
  pieces.scheme = url.substr(0, schemeEnd);
  url.remove_prefix(schemeEnd + 3);
  const auto authorityEnd = url.find_first_of("/\\");
  pieces.authority = url.substr(0, authorityEnd);
  if (authorityEnd != std::string_view::npos) {
    pieces.path = url.substr(authorityEnd);
  }
  const auto userEnd = pieces.authority.rfind('@');
  if (userEnd != std::string_view::npos) {
    pieces.authority.remove_prefix(userEnd + 1);
  }
  return pieces;
}

// The host, and the port as it was written.
std::pair<std::string_view, std::string_view> splitPort(std::string_view authority) {
  const auto colon = authority.rfind(':');
  const auto bracket = authority.rfind(']');
  if (colon == std::string_view::npos || (bracket != std::string_view::npos && colon < bracket)) {
    return {authority, {}};
  }
  const std::string_view port = authority.substr(colon + 1);
  return {authority.substr(0, colon),
          port.substr(std::min(port.find_first_not_of('0'), port.size()))};
}

}  // namespace

std::string loggableUrl(std::string_view url) {
  const UrlPieces pieces = piecesOf(url);
  std::string text;
  if (!pieces.scheme.empty()) {
    text.append(pieces.scheme).append("://").append(pieces.authority);
  }
  text.append(pieces.path);
  for (char& character : text) {
    if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F) {
      character = '?';
    }
  }
  return text;
}

std::string originOf(std::string_view url) {
  const UrlPieces pieces = piecesOf(url);
  const std::string scheme = loweredAscii(pieces.scheme);
  if ((scheme != "http" && scheme != "https") || pieces.authority.empty()) {
    return {};
  }
  const auto [host, port] = splitPort(pieces.authority);
  std::string origin = scheme + "://" + loweredAscii(host) + ":";
  if (port.empty()) {
    origin += scheme == "http" ? "80" : "443";
  } else {
    origin += loweredAscii(port);
  }
  return origin;
}

std::string withQuery(std::string_view url, std::string_view query) {
  std::string longer(url.substr(0, url.find('#')));
  if (longer.find('?') == std::string::npos) {
    longer += '?';
  } else if (longer.back() != '?' && longer.back() != '&') {
    longer += '&';
  }
  return longer.append(query);
}

std::string percentEncoded(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char character : text) {
    const char lower = lowerAscii(character);
    if ((lower >= 'a' && lower <= 'z') || (lower >= '0' && lower <= '9') ||
        std::string_view("-._~").find(character) != std::string_view::npos) {
      encoded += character;
    } else {
      const auto byte = static_cast<unsigned char>(character);
      encoded.append({'%', kDigits[byte >> 4], kDigits[byte & 0xF]});
    }
  }
  return encoded;
}

std::string withoutSecrets(std::string_view text) {
  constexpr std::string_view kWhite = " \t\r\n";
  std::string clean;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(kWhite), text.size());
    std::string_view word = text.substr(0, end);
    const std::size_t slashes = word.find("//");
    const std::size_t at = word.rfind('@');
    const bool isUrl = slashes != std::string_view::npos;
    if (at != std::string_view::npos && (isUrl || word.find(':') < at)) {
      if (isUrl && slashes < at) {
        clean += word.substr(0, slashes + 2);
      }
      word.remove_prefix(at + 1);
    }
    const std::size_t query = word.find('?');
    clean += word.find('=', std::min(query, word.size())) == std::string_view::npos
                 ? word
                 : word.substr(0, query);
    text.remove_prefix(end);
    const std::size_t white = std::min(text.find_first_not_of(kWhite), text.size());
    clean += text.substr(0, white);
    text.remove_prefix(white);
  }
  return clean;
}

}  // namespace zt_transfers
