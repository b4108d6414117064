#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zt_transfers {

// What a Retry-After header asks for, given in seconds or as a date; never negative. Nothing
// for an empty or malformed one. `now` in seconds since 1970.
std::optional<std::chrono::milliseconds> parseRetryAfter(std::string_view value, std::int64_t now);

}  // namespace zt_transfers
