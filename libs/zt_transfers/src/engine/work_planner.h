#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "engine/retry_policy.h"
#include "engine/schedule.h"
#include "engine/transfer_table.h"
#include "engine/work.h"

namespace zt_transfers {

// Decides which file is begun when: groups and origins share the places, failed files return after
// their delay, nothing is begun where an origin or a folder rests, and the number of concurrent
// transfers is limited.
//
// A group that has files to begin is listed. It is then looked at: its next file is parked at its
// origin, where the group waits for a place (COriginTable). While that origin rests, the group's
// further files are parked, too, until one is found whose origin does not rest. So files that wait
// for an origin cost nothing until it is back.
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
                           const COriginTable::Ticket& ticket, const AttemptOutcome& outcome);
  // The attempt's bytes have moved. True when more files may be begun.
  bool applyProgress(RunningAttempt& attempt, CTransferGroup& group, TimePoint now);

 private:
  void wakeRetries();
  void beginReady(TransferWork& work);
  void lookAtListed(int& budget, TransferWork& work);
  void lookAt(CTransferGroup& group, int& budget, TransferWork& work);
  bool parkNext(CTransferGroup& group, OriginId& origin, TransferWork& work);
  bool rests(OriginId origin) const;
  bool mayBegin(CTransferGroup& group, TimePoint now);
  void beginAt(const COriginTable::Candidate& candidate, TransferWork& work);
  bool beginFile(CTransferGroup& group, std::uint32_t index, OriginId origin, TransferWork& work);
  std::optional<FileSpec> loadSpec(CTransferGroup& group, std::uint32_t index, bool& coming,
                                   TransferWork& work);
  bool blameOrigin(CTransferGroup& group, std::uint32_t index, const COriginTable::Ticket& ticket,
                   const AttemptOutcome& outcome);
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
