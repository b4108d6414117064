#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/log.h"
#include "http/http_response.h"

namespace zt_transfers {

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

// Whether a request with the method is repeated at the new URL.
bool isRedirect(long status, std::string_view method);

// The absolute http or https URL to which the response to a request for `url` redirects.
// std::nullopt without a Location, for another protocol, and from https down to http.
std::optional<std::string> redirectTarget(const std::string& url, const HttpResponse& response);

// The headers of a request that is repeated at its new URL: another server gets only
// those that are known to be no credentials.
HttpHeaders headersAfterRedirect(const HttpHeaders& headers, std::string_view fromUrl,
                                 std::string_view toUrl);

// A request's URL and headers, both of which change with each redirect that is followed.
class CRedirects {
 public:
  static constexpr int kMax = 5;

  CRedirects(std::string url, HttpHeaders headers, int max = kMax)
      : url_(std::move(url)), headers_(std::move(headers)), left_(max) {}

  const std::string& url() const { return url_; }
  const HttpHeaders& headers() const { return headers_; }

  // True when the response redirects and the redirect is followed: the request is to be sent again,
  // from its first byte, to the new URL.
  bool follow(const HttpResponse& response, std::string_view method, ILog& log);

 private:
  std::string url_;
  HttpHeaders headers_;
  int left_;
};

}  // namespace zt_transfers
