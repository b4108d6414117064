#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/clock.h"
#include "engine/attempt.h"

namespace zt_transfers {

// How transfers are to be made, from the program's configuration.
struct TransferSettings {
  std::uint32_t maxConcurrent = 8;  // 0 counts as 1
  std::uint32_t maxRetries = 5;
  bool verify = true;
  std::string proxy;
  PartPolicy parts{};
};

// What the network thread is to do now, in this order.
struct TransferWork {
  std::vector<AttemptStop> stops;
  std::vector<CleanupTask> cleanups;
  std::vector<StartOrder> starts;
  std::vector<std::string> failures;  // lines for the log, written already
  std::optional<TimePoint> nextDue;   // when to ask again, without another reason to
};

}  // namespace zt_transfers
