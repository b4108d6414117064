#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "base/clock.h"
#include "engine/attempt.h"
#include "engine/rate_meter.h"
#include "engine/transfer_group.h"

namespace zt_transfers {

// The engine's notes on an attempt under way.
struct RunningAttempt {
  AttemptId id = 0;
  FileRef file;
  std::shared_ptr<AttemptProgress> progress;
  std::uint64_t counted = 0;  // bytes of it that the group's counters hold
  bool finalization = false;  // see IAttemptObserver::onAttemptFinalizing
  CRateMeter rate;
  std::uint64_t reported = 0;  // bytes, as last reported
  TimePoint reportedAt{};
};

// Takes what the attempt has got done since the last time into its group's counters; false when
// there was nothing.
bool foldProgress(RunningAttempt& attempt, CTransferGroup& group, TimePoint now);

// The attempts under way; there are as many as transfers at once are allowed.
//
// Thread: none of its own; the engine guards it.
class CAttemptTable {
 public:
  RunningAttempt& add(FileRef file, TimePoint now);
  // Null when it does not run (any more).
  RunningAttempt* find(AttemptId id);
  RunningAttempt* findFile(FileRef file);
  const RunningAttempt* findFile(FileRef file) const;
  std::vector<AttemptId> ofGroup(std::int32_t groupId) const;
  void erase(AttemptId id) { attempts_.erase(id); }

  std::size_t size() const { return attempts_.size(); }
  // Those that use the network.
  std::size_t transferring() const;
  bool empty() const { return attempts_.empty(); }
  auto begin() { return attempts_.begin(); }
  auto end() { return attempts_.end(); }

 private:
  AttemptId last_ = 0;
  std::map<AttemptId, RunningAttempt> attempts_;
};

}  // namespace zt_transfers
