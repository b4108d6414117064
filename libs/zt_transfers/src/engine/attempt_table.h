#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "base/clock.h"
#include "engine/attempt.h"
#include "engine/origin_table.h"
#include "engine/rate_meter.h"
#include "engine/transfer_group.h"

namespace zt_transfers {

// The engine's record of an attempt under way.
struct RunningAttempt {
  AttemptId id = 0;
  FileRef file;
  std::shared_ptr<AttemptProgress> progress;
  TransferResume noted;       // the last resume data that was saved
  std::uint64_t counted = 0;  // bytes in the group's counters
  bool finalization = false;  // see IAttemptObserver::onAttemptFinalizing
  COriginTable::Ticket ticket{};
  TimePoint begunAt{};
  bool proven = false;  // bytes have been moving for a while
  CRateMeter rate;
  std::uint64_t reported = 0;  // bytes, as last reported
  TimePoint reportedAt{};
};

// Adds the attempt's progress since the last call to its group's counters; false without progress.
bool foldProgress(RunningAttempt& attempt, CTransferGroup& group, TimePoint now);

// The attempts under way.
//
// Thread: none of its own; the engine guards it.
class CAttemptTable {
 public:
  RunningAttempt& add(FileRef file, TimePoint now);
  // Null when it does not run.
  RunningAttempt* find(AttemptId id);
  RunningAttempt* findFile(FileRef file);
  const RunningAttempt* findFile(FileRef file) const;
  std::vector<AttemptId> ofGroup(std::int32_t groupId) const;
  void erase(AttemptId id) { attempts_.erase(id); }

  std::size_t size() const { return attempts_.size(); }
  // Number of attempts that use the network.
  std::size_t transferring() const;
  bool empty() const { return attempts_.empty(); }
  auto begin() { return attempts_.begin(); }
  auto end() { return attempts_.end(); }

 private:
  AttemptId last_ = 0;
  std::map<AttemptId, RunningAttempt> attempts_;
};

}  // namespace zt_transfers
