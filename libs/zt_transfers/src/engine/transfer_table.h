#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
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

// All groups with their attempts, and every change of a file or a group: each is counted in the
// group, saved in the store and reported at once, so that the three never differ.
//
// Thread: none of its own; the engine guards it.
class CTransferTable {
 public:
  using Groups = std::map<std::int32_t, std::unique_ptr<CTransferGroup>>;
  enum class Resume { kKeep, kDiscard };              // the fate of an attempt's resume data
  static constexpr std::size_t kMaxCompleted = 1000;  // groups

  // `activity`: for the log. The others must outlive it.
  CTransferTable(std::string activity, const IClock& clock, IQueueStore& store, CEventQueue& events,
                 const BackoffPolicy& backoff);

  // Null for an unknown id.
  CTransferGroup* find(std::int32_t groupId);
  const Groups& groups() const { return groups_; }
  // Null when no id is left.
  CTransferGroup* create(GroupIdentity identity, bool needsMark);
  // Replaces all groups.
  void restore(RestoredQueue queue, bool needsMark);
  // Adds groups that are stored already.
  void adopt(RestoredQueue queue, bool needsMark);
  void forgetCancelled();
  // The group is gone. No attempt may be under way.
  void forget(std::int32_t groupId);
  // Call it after every change of the group. Forgets the oldest completed groups beyond the newest
  // kMaxCompleted, but not this one.
  void limitCompleted(const CTransferGroup& group);

  // Saves the group's pause and mark.
  void save(const CTransferGroup& group);
  void pause(CTransferGroup& group);
  // Failed files get another chance.
  void resume(CTransferGroup& group);
  void cancel(CTransferGroup& group);
  void notify(const CTransferGroup& group) { eventThrottle_.group(group, clock_.now()); }
  // Reports the group and the first thousand of its failed files.
  void notifyAnew(const CTransferGroup& group);
  CEventThrottle& eventThrottle() { return eventThrottle_; }

  // Changes the file's phase.
  void move(CTransferGroup& group, std::uint32_t index, FilePhase to);
  // The same to kFailed.
  void fail(CTransferGroup& group, std::uint32_t index, const Failure& failure);
  void setSize(CTransferGroup& group, std::uint32_t index, std::uint64_t size);
  // Counts the attempt's progress since the last call; false without progress.
  bool countProgress(RunningAttempt& attempt, CTransferGroup& group, TimePoint now);
  void remove(CTransferGroup& group, std::uint32_t index);

  CAttemptTable& attempts() { return attempts_; }
  const CAttemptTable& attempts() const { return attempts_; }
  // Changes the file's phase to kRunning and returns the order for its attempt.
  StartOrder begin(CTransferGroup& group, std::uint32_t index, FileSpec spec, OriginId origin);
  // The attempt no longer uses the network: the server has done its part.
  void beginFinalization(RunningAttempt& attempt);
  // Saves the attempt's resume data.
  void saveResume(RunningAttempt& attempt);
  // The attempt has ended.
  void end(RunningAttempt& attempt, CTransferGroup& group, Resume fate);
  // Stops the group's attempts; `finalizing`: also those that no longer use the network. Their
  // files change to `then`.
  void stopAttempts(CTransferGroup& group, FilePhase then, bool finalizing);
  // Has the file's partial file or session cleaned up.
  void discardResume(CTransferGroup& group, std::uint32_t index);
  std::vector<AttemptStop> takeStops() { return std::exchange(stops_, {}); }
  // No attempt runs any more, so the stops that nobody took are void.
  void dropStops();
  CCleanupQueue& cleanups() { return cleanups_; }
  COriginTable& origins() { return origins_; }

  const CFailureLog& failures() const { return failures_; }
  FileState fileState(const CTransferGroup& group, std::uint32_t index) const;
  // For the log.
  std::string fileText(const CTransferGroup& group, std::uint32_t index);

 private:
  void saveFile(const CTransferGroup& group, std::uint32_t index);
  void restore(RestoredGroup& restored, bool needsMark);
  void stop(AttemptId id, CTransferGroup& group, Resume fate);
  void keepResume(RunningAttempt& attempt, CTransferGroup& group, const TransferResume& resume);
  void saveResume(RunningAttempt& attempt, const CTransferGroup& group,
                  const TransferResume& resume);
  void remove(const RunningAttempt& attempt, CTransferGroup& group);

  const std::string activity_;
  const IClock& clock_;
  IQueueStore& store_;
  std::int32_t lastGroupId_ = 0;
  Groups groups_;
  CAttemptTable attempts_;
  COriginTable origins_;
  CResumeTable resumes_;
  CFailureLog failures_;
  std::set<std::int32_t> completed_;  // groups; a lower id is an older one
  std::vector<AttemptStop> stops_;
  CCleanupQueue cleanups_;
  CEventThrottle eventThrottle_;
};

}  // namespace zt_transfers
