#pragma once

#include <curl/curl.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace zt_transfers {

// A server's response to one request.
struct HttpResponse {
  static constexpr std::size_t kBodyLimit =
      std::size_t{64} * 1024;  // bytes that are kept of a body

  CURLcode code = CURLE_OK;  // anything else: the response is incomplete
  std::string error;         // libcurl's text for `code`, without secrets
  bool stalled = false;      // ended for lack of traffic
  // It was sent over a connection that was kept open, which then was lost without a response: the
  // server had probably closed it before.
  bool staleConnection = false;
  long status = 0;
  long proxyStatus = 0;  // of a proxy's answer to the request for a tunnel; 0: there was none
  long version = 0;      // of HTTP, in libcurl's numbers
  std::map<std::string, std::string, std::less<>> headers;  // names in lower case
  std::string body;                                         // its beginning
  std::uint64_t bytesSent = 0;                              // of the request's body

  // Empty without such a header.
  std::string_view header(std::string_view lowerCaseName) const {
    const auto found = headers.find(lowerCaseName);
    return found == headers.end() ? std::string_view() : std::string_view(found->second);
  }
};

}  // namespace zt_transfers
