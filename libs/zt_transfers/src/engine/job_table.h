#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "engine/attempt.h"
#include "pace/clock.h"
#include "pace/rate_meter.h"

namespace zt_transfers {

// The engine's notes on an attempt under way.
struct Job {
  FileRef file;
  std::shared_ptr<JobProgress> progress;
  std::uint64_t counted = 0;  // bytes of it that the group's counters hold
  CRateMeter rate;
  std::uint64_t told = 0;  // bytes, as last reported
  TimePoint toldAt{};
};

using JobTable = std::unordered_map<JobId, Job>;

}  // namespace zt_transfers
