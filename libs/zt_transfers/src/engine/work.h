#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "engine/attempt.h"

namespace zt_transfers {

// The program's configuration, as far as the engine needs it.
struct TransferSettings {
  std::uint32_t maxConcurrent = 8;  // 0 counts as 1
  std::uint32_t maxRetries = 5;
  bool verify = true;
  std::string proxy;
  PartPolicy parts{};
};

// Orders for the network thread, to be carried out in this sequence.
struct TransferWork {
  std::vector<AttemptStop> stops;
  std::vector<CleanupTask> cleanups;
  std::vector<StartOrder> starts;
  std::vector<std::string> failures;  // lines that the engine has logged
  std::optional<TimePoint> nextDue;   // when to ask again at the latest
};

// Passes the orders on. False when an attempt has ended at once and made room for another.
inline bool carryOut(TransferWork& work, IAttemptRunner& runner) {
  for (const AttemptStop& stop : work.stops) {
    runner.stop(stop);
  }
  for (const CleanupTask& order : work.cleanups) {
    runner.discard(order);
  }
  bool allBegun = true;
  for (StartOrder& order : work.starts) {
    allBegun = runner.start(std::move(order)) && allBegun;
  }
  return allBegun;
}

}  // namespace zt_transfers
