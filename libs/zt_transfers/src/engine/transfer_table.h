#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/attempt_table.h"
#include "engine/cleanup_queue.h"
#include "engine/event_throttle.h"
#include "engine/failure_log.h"
#include "engine/queue_store.h"
#include "engine/resume_table.h"
#include "engine/transfer_group.h"
#include "engine/work.h"

namespace zt_transfers {

// All groups with their attempts, and the steps that a file or a group can make: each is counted in
// the group, kept in the store and reported at once, so that the three never differ.
//
// Thread: none of its own; the engine guards it.
class CTransferTable {
 public:
  using Groups = std::map<std::int32_t, std::unique_ptr<CTransferGroup>>;
  enum class Rest { kKeep, kForget };  // what becomes of what the attempt leaves

  // `activity`: for the log. The others must outlive it.
  CTransferTable(std::string activity, const IClock& clock, IQueueStore& store, CEventQueue& events,
                 const BackoffPolicy& backoff);

  // Null when there is none.
  CTransferGroup* find(std::int32_t groupId);
  const Groups& groups() const { return groups_; }
  // Nothing when no id is left.
  CTransferGroup* create(GroupIdentity identity, bool needsMark);
  // Takes the place of all groups there are.
  void restore(RestoredQueue queue, bool needsMark);
  void forgetCancelled();

  // The group's pause or mark has changed.
  void keep(const CTransferGroup& group);
  // The group as a whole is over.
  void cancel(CTransferGroup& group);
  void notify(const CTransferGroup& group) { eventThrottle_.group(group, clock_.now()); }
  // The group, and the first thousand of its failed files.
  void notifyAnew(const CTransferGroup& group);
  CEventThrottle& eventThrottle() { return eventThrottle_; }

  // A file takes this step.
  void move(CTransferGroup& group, std::uint32_t index, FilePhase to);
  // The same to kFailed.
  void fail(CTransferGroup& group, std::uint32_t index, const Failure& failure);
  void setSize(CTransferGroup& group, std::uint32_t index, std::uint64_t size);
  void remove(CTransferGroup& group, std::uint32_t index);

  CAttemptTable& attempts() { return attempts_; }
  const CAttemptTable& attempts() const { return attempts_; }
  // The order to begin a file, which runs from here on.
  StartOrder begin(CTransferGroup& group, std::uint32_t index, FileSpec spec);
  // What the attempt would leave now.
  void keepResume(const RunningAttempt& attempt);
  // The attempt has ended.
  void end(const RunningAttempt& attempt, CTransferGroup& group, Rest rest);
  // Stops what uses the network of the group, or everything; its files go on to `then`.
  void hold(CTransferGroup& group, FilePhase then, bool everything);
  // Has what attempts have left of a file cleared away.
  void discardRest(CTransferGroup& group, std::uint32_t index);
  std::vector<AttemptStop> takeStops() { return std::exchange(stops_, {}); }
  // Nothing runs any more, also not what was not stopped yet.
  void dropStops();
  CCleanupQueue& cleanups() { return cleanups_; }

  const CFailureLog& failures() const { return failures_; }
  FileState fileState(const CTransferGroup& group, std::uint32_t index) const;
  // For the log.
  std::string fileText(const CTransferGroup& group, std::uint32_t index);

 private:
  void keepFile(const CTransferGroup& group, std::uint32_t index);
  void restore(RestoredGroup& restored, bool needsMark);
  void stop(AttemptId id, CTransferGroup& group, Rest rest);
  void keepRest(const RunningAttempt& attempt, CTransferGroup& group, const TransferResume& resume);
  void save(const RunningAttempt& attempt, const CTransferGroup& group,
            const TransferResume& resume);
  void leave(const RunningAttempt& attempt, CTransferGroup& group);

  const std::string activity_;
  const IClock& clock_;
  IQueueStore& store_;
  std::int32_t lastGroupId_ = 0;
  Groups groups_;
  CAttemptTable attempts_;
  CResumeTable resumes_;
  CFailureLog failures_;
  std::vector<AttemptStop> stops_;
  CCleanupQueue cleanups_;
  CEventThrottle eventThrottle_;
};

}  // namespace zt_transfers
