#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zantrio {

// The origin of a web page. Pages of equal origins are of the same site.
struct PageOrigin {
  std::string scheme;  // "http" or "https"
  std::string host;    // lower case; an IPv6 address in its shortest form, without brackets
  std::uint16_t port = 0;

  bool operator==(const PageOrigin&) const = default;
};

// The origin of the page at an absolute URL, or of a URL that is only an origin. None for a URL
// that is malformed, and for all schemes but http and https: pages from files, data, blobs and
// about:blank have no origin that could be told from their URL. Thread: any.
std::optional<PageOrigin> pageOriginOf(const std::string& url);

}  // namespace zantrio
