#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "engine/attempt.h"
#include "engine/transfer_group.h"
#include "base/clock.h"
#include "engine/rate_meter.h"

namespace zt_transfers {

// The engine's notes on an attempt under way.
struct Job {
  JobId id = 0;
  FileRef file;
  std::shared_ptr<JobProgress> progress;
  std::uint64_t counted = 0;  // bytes of it that the group's counters hold
  bool landing = false;       // see IAttemptObserver::onAttemptLanding
  CRateMeter rate;
  std::uint64_t told = 0;  // bytes, as last reported
  TimePoint toldAt{};
};

// Takes what the attempt has got done since the last time into its group's counters; false when
// there was nothing.
bool foldProgress(Job& job, CTransferGroup& group, TimePoint now);

// The attempts under way; there are as many as transfers at once are allowed.
//
// Thread: none of its own; the engine guards it.
class CJobTable {
 public:
  Job& add(FileRef file, TimePoint now);
  // Null when it does not run (any more).
  Job* find(JobId id);
  Job* findFile(FileRef file);
  const Job* findFile(FileRef file) const;
  std::vector<JobId> ofGroup(std::int32_t groupId) const;
  void erase(JobId id) { jobs_.erase(id); }

  std::size_t size() const { return jobs_.size(); }
  // Those that use the network.
  std::size_t transferring() const;
  bool empty() const { return jobs_.empty(); }
  auto begin() { return jobs_.begin(); }
  auto end() { return jobs_.end(); }

 private:
  JobId last_ = 0;
  std::map<JobId, Job> jobs_;
};

}  // namespace zt_transfers
