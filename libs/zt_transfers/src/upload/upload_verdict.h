#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/attempt.h"
#include "http/http_response.h"

namespace zt_transfers {

// The MD5 digest of what the server stored, if its ETag is one.
std::optional<std::string> storedDigest(const HttpResponse& response);

// The server has something else than what was sent.
AttemptOutcome otherContent(const std::string& stored, const std::string& sent);

// Judges the answer to the PUT of a whole file of `size` bytes. `md5` is the lower-case
// hexadecimal digest of what was sent, empty when it is not to be compared. `now` in seconds
// since 1970.
AttemptOutcome judgeUpload(const HttpResponse& response, std::uint64_t size, const std::string& md5,
                           std::int64_t now);

}  // namespace zt_transfers
