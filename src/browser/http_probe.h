#pragma once

#include <functional>
#include <stop_token>
#include <string>

namespace zantrio {

// Whether `url` can be loaded: a GET is answered with a status that promises a page or asks the
// user to sign in. Blocks for a few seconds at most; returns false soon after a stop was requested.
// Thread: any.
using ReachabilityProbe = std::function<bool(const std::string& url, const std::stop_token& stop)>;

bool probeWithHttp(const std::string& url, const std::stop_token& stop);

}  // namespace zantrio
