#include "http/request_place.h"

#include "base/url_parts.h"

namespace zt_transfers {

bool CRequestPlace::follow(const HttpAnswer& answer, ILog& log) {
  if (answer.code != CURLE_OK || !isRedirect(answer.status) || redirects_ == kMostRedirects) {
    return false;
  }
  const auto target = redirectTarget(url_, answer);
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
