#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "engine/retry_plan.h"
#include "engine/schedule.h"
#include "engine/transfer_table.h"
#include "engine/work.h"

namespace zt_transfers {

// Decides which file is begun when: groups take turns, files that failed come back after their
// time, and no more are under way than allowed.
//
// Thread: none of its own; the engine guards it.
class CWorkPlanner {
 public:
  // All must outlive it.
  CWorkPlanner(CTransferTable& book, IQueueStore& store, const IClock& clock,
               const BackoffPolicy& backoff)
      : table_(book), store_(store), clock_(clock), retries_(backoff) {}

  void setSettings(TransferSettings settings) { settings_ = std::move(settings); }

  // Between these two something is begun.
  void start() { running_ = true; }
  void stop();
  bool running() const { return running_; }

  // The group has, or may have, something to begin.
  void list(CTransferGroup& group);
  // `congested`: the program does not keep up with its reports; nothing is begun.
  TransferWork takeWork(bool congested);
  // Moves the file on by its attempt's outcome and gives the line for the log.
  std::string applyOutcome(CTransferGroup& group, std::uint32_t index,
                           const AttemptOutcome& outcome);

 private:
  void wakeRetries();
  void beginReady(TransferWork& work);
  bool beginNext(CTransferGroup& group, TransferWork& work);
  void failWaiting(CTransferGroup& group, std::uint32_t index, const Trouble& trouble,
                   TransferWork& work);
  bool mayRetry(const FileSlot& file, const AttemptOutcome& outcome) const;
  // `time` in seconds since 1970; 0: never
  bool expired(std::uint64_t time) const;
  std::string scheduleRetry(CTransferGroup& group, std::uint32_t index,
                            const AttemptOutcome& outcome);

  CTransferTable& table_;
  IQueueStore& store_;
  const IClock& clock_;
  TransferSettings settings_;
  bool running_ = false;
  CSchedule schedule_;
  CRetryPlan retries_;
};

}  // namespace zt_transfers
