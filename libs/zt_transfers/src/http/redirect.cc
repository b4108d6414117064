#include "http/redirect.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <iterator>
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

// Headers that describe the content or the wanted part of it. Any other header of the page can be a
// credential.
bool isForEveryServer(std::string_view name) {
  constexpr std::array<std::string_view, 14> kNames{"accept",
                                                    "accept-encoding",
                                                    "accept-language",
                                                    "cache-control",
                                                    "if-match",
                                                    "if-none-match",
                                                    "if-modified-since",
                                                    "if-unmodified-since",
                                                    "if-range",
                                                    "range",
                                                    "x-amz-acl",
                                                    "x-amz-storage-class",
                                                    "x-amz-server-side-encryption",
                                                    "x-ms-blob-type"};
  constexpr std::array<std::string_view, 5> kBeginnings{
      "content-", "x-amz-meta-", "x-amz-checksum-", "x-goog-meta-", "x-ms-meta-"};
  return std::any_of(kNames.begin(), kNames.end(),
                     [name](auto known) { return equalsIgnoringCase(name, known); }) ||
         std::any_of(kBeginnings.begin(), kBeginnings.end(),
                     [name](auto begin) { return startsWithIgnoringCase(name, begin); });
}

}  // namespace

bool isRedirect(long status, std::string_view method) {
  // 303 names what can be fetched instead, and is no place to send anything to.
  return status == 301 || status == 302 || status == 307 || status == 308 ||
         (status == 303 && (method == "GET" || method == "HEAD"));
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
  std::copy_if(headers.begin(), headers.end(), std::back_inserter(kept),
               [](const auto& header) { return isForEveryServer(header.first); });
  return kept;
}

bool CRedirects::follow(const HttpResponse& response, std::string_view method, ILog& log) {
  if (response.code != CURLE_OK || !isRedirect(response.status, method) || left_ == 0) {
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
