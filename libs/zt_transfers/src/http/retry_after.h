#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zt_transfers {

// The wait in a Retry-After header, which is given in seconds or as a date; never negative.
// std::nullopt for an empty or malformed header. `now` in seconds since 1970.
std::optional<std::chrono::milliseconds> parseRetryAfter(std::string_view value, std::int64_t now);

}  // namespace zt_transfers
