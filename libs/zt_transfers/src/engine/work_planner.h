#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "engine/retry_policy.h"
#include "engine/schedule.h"
#include "engine/transfer_table.h"
#include "engine/work.h"

namespace zt_transfers {

// Decides which file is begun when: groups take turns, failed files return after their delay, and
// the number of concurrent transfers is limited.
//
// Thread: none of its own; the engine guards it.
class CWorkPlanner {
 public:
  // All must outlive it.
  CWorkPlanner(CTransferTable& table, IQueueStore& store, const IClock& clock,
               const BackoffPolicy& backoff)
      : table_(table), store_(store), clock_(clock), retries_(backoff) {}

  void setSettings(TransferSettings settings);

  // Files are begun between these two calls only.
  void start() { running_ = true; }
  void stop();
  bool running() const { return running_; }

  // Gives the group its turn if files wait in it.
  void list(CTransferGroup& group);
  // `congested`: the program does not keep up with its events; no file is begun.
  TransferWork takeWork(bool congested);
  // Changes the file's phase by its attempt's outcome and returns the line for the log.
  std::string applyOutcome(CTransferGroup& group, std::uint32_t index,
                           const AttemptOutcome& outcome);

 private:
  void wakeRetries();
  void beginReady(TransferWork& work);
  bool beginNext(CTransferGroup& group, TransferWork& work);
  void failWaiting(CTransferGroup& group, std::uint32_t index, const Problem& problem,
                   TransferWork& work);
  // `time` in seconds since 1970; 0: never
  bool expired(std::uint64_t time) const;
  std::string scheduleRetry(CTransferGroup& group, std::uint32_t index,
                            const AttemptOutcome& outcome, const CRetryPolicy::Decision& decision);

  CTransferTable& table_;
  IQueueStore& store_;
  const IClock& clock_;
  TransferSettings settings_;
  bool running_ = false;
  CSchedule schedule_;
  CRetryPolicy retries_;
};

}  // namespace zt_transfers
