#pragma once

#include <cstdint>

#include "engine/attempt.h"
#include "http/http_response.h"

namespace zt_transfers {

// The outcome when no complete response came (`response.code` is not CURLE_OK).
// `now` in seconds since 1970.
AttemptOutcome judgeTransport(const HttpResponse& response, std::int64_t now);

// The outcome of a complete response that is neither a success nor a redirect that can be followed,
// or that contains an error document.
AttemptOutcome judgeRefusal(const HttpResponse& response, std::int64_t now);

}  // namespace zt_transfers
