#include "http/redirect.h"

#include <curl/curl.h>

#include <array>
#include <memory>

#include "base/ascii.h"
#include "base/url_parts.h"

namespace zt_transfers {
namespace {

struct CurlUrlDeleter {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
struct CurlTextDeleter {
  void operator()(char* text) const { curl_free(text); }
};

std::optional<std::string> resolved(const std::string& base, const std::string& reference) {
  const std::unique_ptr<CURLU, CurlUrlDeleter> url(curl_url());
  if (!url || curl_url_set(url.get(), CURLUPART_URL, base.c_str(), 0) != CURLUE_OK ||
      curl_url_set(url.get(), CURLUPART_URL, reference.c_str(), 0) != CURLUE_OK) {
    return std::nullopt;
  }
  char* text = nullptr;
  if (curl_url_get(url.get(), CURLUPART_URL, &text, 0) != CURLUE_OK) {
    return std::nullopt;
  }
  const std::unique_ptr<char, CurlTextDeleter> owned(text);
  return std::string(text);
}

bool isCredential(std::string_view name) {
  constexpr std::array<std::string_view, 3> kNames{"authorization", "cookie",
                                                   "x-amz-security-token"};
  for (const std::string_view known : kNames) {
    if (equalsIgnoringCase(name, known)) {
      return true;
    }
  }
  return false;
}

}  // namespace

bool isRedirect(long status) {
  return status == 301 || status == 302 || status == 307 || status == 308;
}

std::optional<std::string> redirectTarget(const std::string& url, const HttpResponse& response) {
  const std::string location(response.header("location"));
  if (location.empty()) {
    return std::nullopt;
  }
  auto target = resolved(url, location);
  if (!target || originOf(*target).empty()) {
    return std::nullopt;
  }
  const bool wasSecure = startsWithIgnoringCase(url, "https:");
  if (wasSecure && !startsWithIgnoringCase(*target, "https:")) {
    return std::nullopt;
  }
  return target;
}

HttpHeaders headersAfterRedirect(const HttpHeaders& headers, std::string_view fromUrl,
                                 std::string_view toUrl) {
  if (originOf(fromUrl) == originOf(toUrl)) {
    return headers;
  }
  HttpHeaders kept;
  for (const auto& header : headers) {
    if (!isCredential(header.first) && !equalsIgnoringCase(header.first, "host")) {
      kept.push_back(header);
    }
  }
  return kept;
}

bool CRedirects::follow(const HttpResponse& response, ILog& log) {
  if (response.code != CURLE_OK || !isRedirect(response.status) || left_ == 0) {
    return false;
  }
  const auto target = redirectTarget(url_, response);
  if (!target) {
    return false;
  }
  --left_;
  log.information("Redirected from " + loggableUrl(url_) + " to " + loggableUrl(*target));
  headers_ = headersAfterRedirect(headers_, url_, *target);
  url_ = *target;
  return true;
}

}  // namespace zt_transfers
