#include "base/file_url.h"

#include "base/ascii.h"

namespace zt_transfers {
namespace {

std::optional<std::string> percentDecoded(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      decoded.push_back(text[at]);
      continue;
    }
    const int high = at + 2 < text.size() ? hexDigitValue(text[at + 1]) : -1;
    const int low = at + 2 < text.size() ? hexDigitValue(text[at + 2]) : -1;
    if (high < 0 || low < 0) {
      return std::nullopt;
    }
    decoded.push_back(static_cast<char>(high * 16 + low));
    at += 2;
  }
  return decoded;
}

}  // namespace

std::optional<std::string> pathOfFileUrl(std::string_view url) {
  constexpr std::string_view kScheme = "file://";
  constexpr std::string_view kLocalHost = "localhost";
  if (!startsWithIgnoringCase(url, kScheme)) {
    return std::nullopt;
  }
  url.remove_prefix(kScheme.size());
  if (startsWithIgnoringCase(url, kLocalHost)) {
    url.remove_prefix(kLocalHost.size());
  }
  if (url.empty() || url.front() != '/') {
    return std::nullopt;
  }
  auto path = percentDecoded(url);
  if (path && path->find('\0') != std::string::npos) {
    return std::nullopt;
  }
  return path;
}

}  // namespace zt_transfers
