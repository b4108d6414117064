#include "browser/http_probe.h"

#include <curl/curl.h>

#include <memory>
#include <mutex>

namespace zantrio {
namespace {

constexpr long kTimeLimitSeconds = 10;
constexpr long kMaxRedirects = 10;

struct CurlDeleter {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
using CurlPtr = std::unique_ptr<CURL, CurlDeleter>;

// Only the status matters: ends the transfer at the first bytes of the body.
std::size_t refuseBody(char* /*data*/, std::size_t /*size*/, std::size_t /*count*/,
                       void* /*context*/) {
  return 0;
}

int abortWhenStopped(void* stop, curl_off_t /*downTotal*/, curl_off_t /*down*/,
                     curl_off_t /*upTotal*/, curl_off_t /*up*/) {
  return *static_cast<const StopFlag*>(stop) ? 1 : 0;
}

CurlPtr createRequest(const std::string& url, const std::string& userAgent, const StopFlag& stop) {
  static std::once_flag initialized;
  std::call_once(initialized, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
  CurlPtr request(curl_easy_init());
  if (!request) {
    return request;
  }
  curl_easy_setopt(request.get(), CURLOPT_URL, url.c_str());
  curl_easy_setopt(request.get(), CURLOPT_USERAGENT, userAgent.c_str());
  curl_easy_setopt(request.get(), CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(request.get(), CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(request.get(), CURLOPT_MAXREDIRS, kMaxRedirects);
  curl_easy_setopt(request.get(), CURLOPT_TIMEOUT, kTimeLimitSeconds);
  curl_easy_setopt(request.get(), CURLOPT_NOSIGNAL, 1L);
  // A name lookup in progress does not delay the end of the program.
  curl_easy_setopt(request.get(), CURLOPT_QUICK_EXIT, 1L);
  curl_easy_setopt(request.get(), CURLOPT_WRITEFUNCTION, refuseBody);
  curl_easy_setopt(request.get(), CURLOPT_XFERINFOFUNCTION, abortWhenStopped);
  curl_easy_setopt(request.get(), CURLOPT_XFERINFODATA, &stop);
  curl_easy_setopt(request.get(), CURLOPT_NOPROGRESS, 0L);
  return request;
}

}  // namespace

bool promisesPage(long status) {
  return (status >= 200 && status < 400) || status == 401 || status == 403 || status == 407;
}

bool probeWithHttp(const std::string& url, const std::string& userAgent, const StopFlag& stop) {
  const CurlPtr request = createRequest(url, userAgent, stop);
  if (!request) {
    return false;
  }
  const CURLcode result = curl_easy_perform(request.get());
  if (result != CURLE_OK && result != CURLE_WRITE_ERROR) {
    return false;
  }
  long status = 0;
  curl_easy_getinfo(request.get(), CURLINFO_RESPONSE_CODE, &status);
  return promisesPage(status);
}

}  // namespace zantrio
