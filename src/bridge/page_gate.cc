#include "bridge/page_gate.h"

#include <algorithm>
#include <sstream>

#include "app/log/logger.h"

namespace zantrio {
namespace {

PageOrigin byHttps(const PageOrigin& http) {
  constexpr std::uint16_t kHttpPort = 80;
  constexpr std::uint16_t kHttpsPort = 443;
  return {"https", http.host, http.port == kHttpPort ? kHttpsPort : http.port};
}

}  // namespace

CPageGate::CPageGate(const std::string& appBaseUrl, const std::string& furtherOrigins) {
  std::istringstream urls(appBaseUrl + ' ' + furtherOrigins);
  for (std::string url; urls >> url;) {
    const auto origin = pageOriginOf(url);
    if (!origin) {
      logError("The bridges cannot be opened to ", url, ", which has no web origin");
      continue;
    }
    const bool isApplication = admitted_.empty() && url == appBaseUrl;
    admitted_.push_back(*origin);
    if (isApplication && origin->scheme == "http") {
      admitted_.push_back(byHttps(*origin));
    }
  }
}

bool CPageGate::admits(const CefRefPtr<CefFrame>& frame) const {
  if (!frame) {
    return false;
  }
  for (CefRefPtr<CefFrame> each = frame; each; each = each->GetParent()) {
    if (!admitsUrl(each->GetURL())) {
      return false;
    }
  }
  return true;
}

bool CPageGate::admitsUrl(const std::string& url) const {
  const auto origin = pageOriginOf(url);
  return origin && std::find(admitted_.begin(), admitted_.end(), *origin) != admitted_.end();
}

}  // namespace zantrio
