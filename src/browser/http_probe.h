#pragma once

#include <functional>
#include <string>

#include "browser/stoppable_thread.h"

namespace zantrio {

// Whether `url` can be loaded: a GET of this user agent is answered with a status that promises a
// page. Uses the proxies that the environment names, like the browser. Blocks for a few seconds at
// most; returns false soon after a stop was requested. Thread: any.
using ReachabilityProbe =
    std::function<bool(const std::string& url, const std::string& userAgent, const StopFlag& stop)>;

bool probeWithHttp(const std::string& url, const std::string& userAgent, const StopFlag& stop);

// Whether a response with this HTTP status shows a page or asks the user to sign in, to the service
// or to a proxy.
bool promisesPage(long status);

}  // namespace zantrio
