#include "files/file_status.h"

#include <limits>

namespace zantrio {

std::int64_t toMicroseconds(std::int64_t seconds, std::int64_t nanoseconds) {
  constexpr std::int64_t kPerSecond = 1'000'000;
  constexpr std::int64_t kFarthest = std::numeric_limits<std::int64_t>::max() / kPerSecond - 1;
  if (seconds > kFarthest) {
    return std::numeric_limits<std::int64_t>::max();
  }
  if (seconds < -kFarthest) {
    return std::numeric_limits<std::int64_t>::min();
  }
  return seconds * kPerSecond + nanoseconds / 1000;
}

}  // namespace zantrio
