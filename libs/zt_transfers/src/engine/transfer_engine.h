#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "engine/attempt.h"
#include "engine/job_table.h"
#include "engine/queue_store.h"
#include "engine/reporter.h"
#include "engine/resume_book.h"
#include "engine/retry_plan.h"
#include "engine/schedule.h"
#include "engine/transfer_group.h"
#include "engine/unmeasured_files.h"
#include "log/log.h"

namespace zt_transfers {

// The heart of a manager: knows all groups and files, decides which file is to be begun or
// stopped when, and what is told to the program. It does no input or output itself: the network
// thread asks it for work and tells it results.
//
// Thread: any; one mutex guards all of it and is never held while anything foreign is called,
// except for the queue store and the event queue, which call nobody.
class CTransferEngine final : public IAttemptObserver {
 public:
  struct Options {
    std::string activity = "upload";  // for the log
    bool needsMark = true;            // see CTransferGroup
    bool measuresSources = true;      // sizes are found on this machine, see takeUnmeasured
    BackoffPolicy backoff{};
  };
  struct Settings {
    std::uint32_t maxConcurrent = 8;  // 0 counts as 1
    std::uint32_t maxRetries = 5;
    bool verify = true;
    std::string proxy;
    PartPolicy parts;
  };
  struct Stop {
    JobId job = 0;
    bool discard = false;
    bool operator==(const Stop&) const = default;
  };
  // What the network thread is to do now, in this order.
  struct Work {
    std::vector<Stop> stops;
    std::vector<Leftover> leftovers;
    std::vector<StartOrder> starts;
    std::vector<std::string> failures;  // lines for the log, written already
    std::optional<TimePoint> nextDue;   // when to ask again, without another reason to
  };
  using Unmeasured = CUnmeasuredFiles::File;
  struct Measured {
    FileRef file;
    std::uint64_t size = 0;
  };

  // All must outlive the engine.
  struct Surroundings {
    const IClock& clock;
    IQueueStore& store;
    CEventQueue& events;
    ILog& log;
  };

  CTransferEngine(Options options, const Surroundings& surroundings);

  // Called, unlocked and from any thread, when there may be work. Set before anything else.
  void setWake(std::function<void()> wake) { wake_ = std::move(wake); }

  // Takes the place of all groups there are. Between `stop` and `start` only.
  void restore(std::int32_t lastGroupId, std::vector<RestoredGroup> groups);

  // For the program; see the managers' headers.
  std::int32_t createGroup(GroupIdentity identity);
  std::vector<GroupSnapshot> groups() const;
  std::optional<GroupSnapshot> group(std::int32_t groupId) const;
  void queueFiles(std::int32_t groupId, const std::vector<FileSpec>& specs);
  void dequeueFiles(std::int32_t groupId, const std::vector<std::string>& fileIds);
  void setMarked(std::int32_t groupId, bool marked);
  void pauseGroup(std::int32_t groupId);
  void resumeGroup(std::int32_t groupId);
  void cancelGroup(std::int32_t groupId);
  void setSettings(const Settings& settings);

  // Cancelled groups leave, all others are reported once, and with each the first thousand of its
  // failed files.
  void start();
  // Call it when no attempt runs any more. Files that were under way wait again; no event
  // follows.
  void stop();

  // For the network thread.
  Work takeWork();

  void onAttemptDone(JobId job, const AttemptOutcome& outcome) override;
  void onAttemptCheckpoint(JobId job) override;
  bool onAttemptLanding(JobId job) override;

  // For the thread that reports: adds progress that is due to the events; false when nothing is
  // under way that could make progress.
  bool collectProgress();

  // For the pool: up to `limit` files whose size is not known yet, and what was found. There can be
  // some that `hasUnmeasured` leaves out while their descriptions are being brought.
  std::vector<Unmeasured> takeUnmeasured(std::size_t limit);
  bool hasUnmeasured() const;
  void applySizes(const std::vector<Measured>& sizes);

  // For the store: descriptions that were asked for have come, or cannot be had.
  void specsArrived(std::int32_t groupId);

 private:
  CTransferGroup* find(std::int32_t groupId);
  void queueFile(CTransferGroup& group, const FileSpec& spec);
  void requeueFile(CTransferGroup& group, std::uint32_t index, const FileSpec& spec);
  void moveFile(CTransferGroup& group, std::uint32_t index, FilePhase to);
  void keepGroup(const CTransferGroup& group);
  void keepFile(const CTransferGroup& group, std::uint32_t index);
  enum class Rest { kKeep, kForget };  // what becomes of a partial file
  void endJob(const Job& job, CTransferGroup& group, Rest rest);
  void stopJob(JobId id, CTransferGroup& group, Rest rest);
  void holdJobs(CTransferGroup& group, FilePhase then);
  void discardRest(CTransferGroup& group, std::uint32_t index);
  Work decideWork(bool congested);
  void startReady(Work& work);
  bool startNext(CTransferGroup& group, Work& work);
  // `time` in seconds since 1970; 0: never
  bool expired(std::uint64_t time) const;
  void failWaiting(CTransferGroup& group, std::uint32_t index, const std::string& reason,
                   Work& work);
  void tellFailuresAnew(const CTransferGroup& group);
  std::string settle(CTransferGroup& group, std::uint32_t index, const AttemptOutcome& outcome);
  std::string scheduleRetry(CTransferGroup& group, std::uint32_t index,
                            const AttemptOutcome& outcome);
  void wakeRetries();
  FileState fileState(const CTransferGroup& group, std::uint32_t index) const;
  void list(CTransferGroup& group);
  std::string fileText(const CTransferGroup& group, std::uint32_t index);

  // Constant after construction.
  const Options options_;
  const IClock& clock_;
  IQueueStore& store_;
  CEventQueue& events_;
  ILog& log_;
  std::function<void()> wake_;

  mutable std::mutex mutex_;
  // Guarded by mutex_.
  Settings settings_;
  bool running_ = false;
  std::int32_t lastGroupId_ = 0;
  std::map<std::int32_t, std::unique_ptr<CTransferGroup>> groups_;
  CJobTable jobs_;
  CResumeBook resumes_;
  std::vector<Stop> stops_;
  std::vector<Leftover> leftovers_;
  CSchedule schedule_;
  CRetryPlan retries_;
  CUnmeasuredFiles unmeasured_;
  CReporter reporter_;
};

}  // namespace zt_transfers
