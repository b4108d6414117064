#pragma once

#include <string>
#include <utility>

#include "base/log.h"
#include "http/http_response.h"
#include "http/redirect.h"

namespace zt_transfers {

// Where a request goes, and with which headers: both change when the server sends it elsewhere.
class CRequestPlace {
 public:
  static constexpr int kMaxRedirects = 5;

  CRequestPlace(std::string url, HttpHeaders headers)
      : url_(std::move(url)), headers_(std::move(headers)) {}

  const std::string& url() const { return url_; }
  const HttpHeaders& headers() const { return headers_; }

  // True when the answer is a redirect that is followed: the request is to be sent again, from
  // the first byte, to the place that this is now.
  bool follow(const HttpResponse& response, ILog& log);

 private:
  std::string url_;
  HttpHeaders headers_;
  int redirects_ = 0;
};

}  // namespace zt_transfers
