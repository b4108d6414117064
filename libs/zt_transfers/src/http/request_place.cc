#include "http/request_place.h"

#include "base/url_parts.h"

namespace zt_transfers {

bool CRequestPlace::follow(const HttpResponse& response, ILog& log) {
  if (response.code != CURLE_OK || !isRedirect(response.status) || redirects_ == kMaxRedirects) {
    return false;
  }
  const auto target = redirectTarget(url_, response);
  if (!target) {
    return false;
  }
  ++redirects_;
  log.information("Redirected from " + loggableUrl(url_) + " to " + loggableUrl(*target));
  headers_ = headersAfterRedirect(headers_, url_, *target);
  url_ = *target;
  return true;
}

}  // namespace zt_transfers
