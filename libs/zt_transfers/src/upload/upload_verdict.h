#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/attempt.h"
#include "http/http_response.h"

namespace zt_transfers {

// The MD5 digest of the stored object, if its ETag is one.
std::optional<std::string> storedDigest(const HttpResponse& response);

// The outcome when the server has stored other content than was sent.
AttemptOutcome otherContent(const std::string& stored, const std::string& sent);

// Judges the response to a PUT of `size` bytes. `md5` is the lower-case hexadecimal digest of the
// body, empty when it is not to be compared. `now` in seconds since 1970.
AttemptOutcome judgeUpload(const HttpResponse& response, std::uint64_t size, const std::string& md5,
                           std::int64_t now);

}  // namespace zt_transfers
