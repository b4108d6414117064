#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/clock.h"
#include "base/mutex.h"
#include "engine/failure.h"
#include "engine/file_spec.h"
#include "engine/transfer_resume.h"

namespace zt_transfers {

// One attempt to transfer one file. Never used twice.
using AttemptId = std::uint64_t;

// Written by the attempt, read by the engine for its reports. Thread: any.
class AttemptProgress {
 public:
  static constexpr std::uint64_t kUnknown = ~std::uint64_t{0};

  std::atomic<std::uint64_t> bytes{0};
  std::atomic<std::uint64_t> size{kUnknown};  // of the file, once the attempt knows it

  // From here the next attempt resumes.
  void setResume(TransferResume resume) {
    const CMutexLock lock(mutex_);
    resume_ = std::move(resume);
  }
  // Changes it in place.
  template <typename Change>
  void changeResume(Change change) {
    const CMutexLock lock(mutex_);
    change(resume_);
  }
  TransferResume resume() const {
    const CMutexLock lock(mutex_);
    return resume_;
  }

 private:
  mutable CMutex mutex_;
  TransferResume resume_ GUARDED_BY(mutex_);
};

// Which files are transferred in several parts at a time.
struct PartPolicy {
  std::uint64_t from = ~std::uint64_t{0};  // minimum size of the file in bytes
  std::uint64_t size = 0;                  // bytes of a part; 0: chosen by the attempt
  std::uint32_t requests = 1;              // concurrent ones, of all files together
};

// The order to begin an attempt.
struct StartOrder {
  AttemptId attemptId = 0;
  FileRef file;
  FileSpec spec;
  std::string folder;     // the group's; downloads only
  std::string salt;       // of the queue; makes the names of partial files unique
  TransferResume resume;  // left by an earlier attempt
  bool verify = true;
  std::string proxy;
  PartPolicy parts;
  std::uint32_t maxConcurrent = 1;  // requests of all attempts together
  std::shared_ptr<AttemptProgress> progress;
};

// How an attempt ended.
struct AttemptOutcome {
  enum class Kind {
    kDone,   // every byte is confirmed
    kRetry,  // another attempt may succeed
    kFinal,  // another attempt would fail as well
  };

  // The extent of the trouble: everything within it rests until it may be over.
  enum class Scope {
    kFile,
    kOrigin,  // the server, or the network on the way to it
    kFolder,  // the disk, or the group's folder
  };

  // How a retry counts against the limit.
  enum class RetryBudget {
    kCounts,      // it uses up one of the file's retries
    kAtLeastOne,  // the same, but one retry is made even if none is allowed: it shows whether the
                  // file is to blame
    kFree,        // it uses up nothing: neither the file nor the server is to blame
  };

  Kind kind = Kind::kFinal;
  std::string reason{};  // for the log and for people; no secrets
  std::string_view code = failure::kOther;
  RetryBudget retryBudget = RetryBudget::kCounts;
  // The delay that the server asked for.
  std::optional<std::chrono::milliseconds> retryAfter{};
  Scope scope = Scope::kFile;
  // The trouble is the file's own, unless other files of its origin fail in a row as well.
  bool suspectsOrigin = false;
  // The file came so much further that its used retries are refunded.
  bool progressed = false;

  static AttemptOutcome done() { return {.kind = Kind::kDone}; }
  static AttemptOutcome retry(std::string why, std::string_view code = failure::kOther) {
    return {.kind = Kind::kRetry, .reason = std::move(why), .code = code};
  }
  static AttemptOutcome final(std::string why, std::string_view code = failure::kOther) {
    return {.kind = Kind::kFinal, .reason = std::move(why), .code = code};
  }
};

struct AttemptEnd {
  AttemptId attemptId = 0;
  AttemptOutcome outcome;
};

// The order to end an attempt.
struct AttemptStop {
  AttemptId attemptId = 0;
  bool discard = false;  // its partial file or session will not be resumed
  std::string folder{};  // the group's; downloads only
  std::shared_ptr<AttemptProgress> progress{};

  Orphan orphan() const { return {.folder = folder, .resume = progress->resume()}; }
};

// The order to delete a partial file or to abort an upload session.
struct CleanupTask {
  OrphanId id = 0;
  Orphan orphan;
  std::string proxy;
};

// Receives the reports of attempts. Thread: any; downloads report from the pool, too.
class IAttemptObserver {
 public:
  virtual void onAttemptsDone(const std::vector<AttemptEnd>& ends) = 0;
  void onAttemptDone(AttemptId attemptId, const AttemptOutcome& outcome) {
    onAttemptsDone({{attemptId, outcome}});
  }
  // Its progress has resume data to be stored. False when it was stopped meanwhile.
  virtual bool onAttemptCheckpoint(AttemptId attemptId) = 0;
  // Every byte of a download has arrived, and the file is about to get its final name. From here on
  // the attempt does not count as a transfer, and a pause does not stop it. False when it was
  // stopped meanwhile: then it must not go on.
  virtual bool onAttemptFinalizing(AttemptId attemptId) = 0;
  // Persists these attempts' resume data before an irreversible step (rename, first part,
  // completion). Blocks, for a limited time.
  virtual void keepDurably(const std::vector<AttemptId>& attempts) = 0;
  // This will not be resumed; a CleanupTask for it follows.
  virtual void onOrphaned(Orphan orphan) = 0;
  // The outcome of a CleanupTask.
  virtual void onCleanedUp(OrphanId id, const AttemptOutcome& outcome) = 0;

 protected:
  ~IAttemptObserver() = default;
};

// Carries out attempts: the seam between the engine, which decides, and the network.
// Thread: the network thread, unless an operation says otherwise.
class IAttemptRunner {
 public:
  virtual ~IAttemptRunner() = default;
  // False when the attempt has ended and was reported already.
  virtual bool start(StartOrder order) = 0;
  // The attempt ends without a report. If it has ended by itself already, only `discard` has an
  // effect.
  virtual void stop(const AttemptStop& stop) = 0;
  virtual void stopAll() = 0;
  // Called once a round of the network thread; returns when the next call is due at the latest.
  virtual std::optional<TimePoint> tick() { return std::nullopt; }
  // Syncs the files of stopped attempts and records that in their progress. Called once neither the
  // network nor the pool runs. Thread: the owner's.
  virtual void syncToDisk() {}
  // Carries out the task; the observer is told its outcome.
  virtual void discard(const CleanupTask& order) = 0;
};

}  // namespace zt_transfers
