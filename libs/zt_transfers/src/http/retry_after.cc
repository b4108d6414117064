#include "http/retry_after.h"

#include <curl/curl.h>

#include <algorithm>
#include <charconv>
#include <string>

#include "base/ascii.h"

namespace zt_transfers {
namespace {

constexpr std::int64_t kMax = 366LL * 24 * 3600;  // seconds; keeps later arithmetic in range

}  // namespace

std::optional<std::chrono::milliseconds> parseRetryAfter(std::string_view value, std::int64_t now) {
  value = trimmed(value);
  if (value.empty()) {
    return std::nullopt;
  }
  std::int64_t wait = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), wait);
  const bool isNumber = end == value.data() + value.size();
  if (isNumber && error == std::errc::result_out_of_range) {
    wait = kMax;
  } else if (!isNumber) {
    const time_t date = curl_getdate(std::string(value).c_str(), nullptr);
    if (date < 0) {
      return std::nullopt;
    }
    wait = static_cast<std::int64_t>(date) - now;
  }
  return std::chrono::seconds(std::clamp<std::int64_t>(wait, 0, kMax));
}

}  // namespace zt_transfers
