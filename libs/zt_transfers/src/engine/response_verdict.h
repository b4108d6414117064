#pragma once

#include <cstdint>

#include "engine/attempt.h"
#include "http/http_response.h"

namespace zt_transfers {

// What follows when no whole answer came (`answer.code` is not CURLE_OK).
AttemptOutcome judgeTransport(const HttpResponse& response);

// What follows from an answer that is neither a success nor a redirect that can be followed.
// `now` in seconds since 1970.
AttemptOutcome judgeRefusal(const HttpResponse& response, std::int64_t now);

}  // namespace zt_transfers
