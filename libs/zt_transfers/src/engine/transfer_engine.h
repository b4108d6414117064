#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/log.h"
#include "base/mutex.h"
#include "engine/attempt.h"
#include "engine/pending_sizes.h"
#include "engine/queue_store.h"
#include "engine/transfer_group.h"
#include "engine/transfer_table.h"
#include "engine/work.h"
#include "engine/work_planner.h"

namespace zt_transfers {

// The centre of a manager: knows all groups and files, decides when files are begun and stopped,
// and which events the program gets. It does no input or output itself: the network thread asks it
// for work and reports results.
//
// Thread: any; one mutex guards all state. It is held while the queue store and the event queue are
// called; the store wakes its writer from there (lock order: base/mutex.h). The wake and flush
// callbacks and the log are called without it.
class CTransferEngine final : public IAttemptObserver {
 public:
  struct Options {
    std::string activity = "upload";  // for the log
    bool needsMark = true;            // see CTransferGroup
    bool statsSources = true;         // file sizes come from takePendingSizes, not from the program
    BackoffPolicy backoff{};
  };
  using Settings = TransferSettings;
  using Work = TransferWork;
  using PendingSize = CPendingSizes::File;
  // A group for a report to the service.
  struct GroupReport {
    struct FailedFile {
      std::string fileId;
      Failure failure;
    };

    GroupSnapshot shot;
    std::string token;
    std::optional<Failure> waitingFor{};  // the outage that the group waits for
    std::uint32_t filesFailed = 0;
    std::vector<FailedFile> failures{};  // the newest ones, the latest first
  };
  struct FileSize {
    FileRef file;
    std::uint64_t size = 0;
  };

  // All must outlive the engine.
  struct Dependencies {
    const IClock& clock;
    IQueueStore& store;
    CEventQueue& events;
    ILog& log;
  };

  CTransferEngine(Options options, const Dependencies& dependencies);

  // Called without the lock and from any thread when there may be work. Set before any other call.
  void setWake(std::function<void()> wake) { wake_ = std::move(wake); }

  // Called without the lock and from any thread to write all changes so far to disk.
  void setFlush(std::function<void()> flush) { flush_ = std::move(flush); }

  // Replaces all groups. Between `stop` and `start` only.
  void restore(RestoredQueue queue);
  // Adds what was stored but could not be read before. Its ids must be new.
  void adopt(RestoredQueue queue);

  // For the program; see the managers' headers.
  std::int32_t createGroup(GroupIdentity identity);
  std::vector<GroupSnapshot> groups() const;
  std::optional<GroupSnapshot> group(std::int32_t groupId) const;
  std::optional<GroupReport> report(std::int32_t groupId) const;
  void queueFiles(std::int32_t groupId, const std::vector<FileSpec>& specs);
  void dequeueFiles(std::int32_t groupId, const std::vector<std::string>& fileIds);
  void setMarked(std::int32_t groupId, bool marked);
  void pauseGroup(std::int32_t groupId);
  void resumeGroup(std::int32_t groupId);
  void cancelGroup(std::int32_t groupId);
  void setSettings(const Settings& settings);

  // Drops cancelled groups. Reports every other group that is not completed, each with the first
  // thousand of its failed files.
  void start();
  // Files that were under way wait again, without an event. No attempt may run any more.
  void stop();

  // For the network thread.
  Work takeWork();

  void onAttemptsDone(const std::vector<AttemptEnd>& ends) override;
  bool onAttemptCheckpoint(AttemptId attemptId) override;
  bool onAttemptFinalizing(AttemptId attemptId) override;
  void keepDurably(const std::vector<AttemptId>& attempts) override;
  void onOrphaned(Orphan orphan) override;
  void onCleanedUp(OrphanId id, const AttemptOutcome& outcome) override;

  // For the event thread: queues events for progress that is due; false when no attempt is under
  // way.
  bool collectProgress();
  // Whether an attempt is under way.
  bool isTransferring() const;

  // For the pool: up to `limit` files whose size is unknown, and their sizes. hasPendingSizes
  // leaves out files whose descriptions are being loaded.
  std::vector<PendingSize> takePendingSizes(std::size_t limit);
  bool hasPendingSizes() const;
  void applySizes(const std::vector<FileSize>& sizes);

  // For the store: requested descriptions were loaded, or cannot be read.
  void specsArrived(std::int32_t groupId);

 private:
  void askForSizes(const RestoredQueue& queue) REQUIRES(mutex_);
  void announce(CTransferGroup& group) REQUIRES(mutex_);
  // Applies `change` to the group, unless it is unknown or cancelled.
  template <typename Change>
  void change(std::int32_t groupId, const Change& change);
  void queueFile(CTransferGroup& group, const FileSpec& spec) REQUIRES(mutex_);
  void reschedule(CTransferGroup& group) REQUIRES(mutex_);
  bool foldAll(bool& mayBegin);
  bool saveResume(AttemptId attemptId) REQUIRES(mutex_);
  void requeueFile(CTransferGroup& group, std::uint32_t index, const FileSpec& spec)
      REQUIRES(mutex_);

  // Constant after construction.
  const Options options_;
  const IClock& clock_;
  IQueueStore& store_;
  CEventQueue& events_;
  ILog& log_;
  std::function<void()> wake_;
  std::function<void()> flush_;

  mutable CMutex mutex_;
  CTransferTable table_ GUARDED_BY(mutex_);
  CWorkPlanner planner_ GUARDED_BY(mutex_);
  CPendingSizes pendingSizes_ GUARDED_BY(mutex_);
};

}  // namespace zt_transfers
