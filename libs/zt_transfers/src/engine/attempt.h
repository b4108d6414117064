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
#include "engine/orphan.h"
#include "engine/transfer_resume.h"

namespace zt_transfers {

// One attempt to transfer one file. Never used twice.
using AttemptId = std::uint64_t;

// Written by the attempt, read by the engine when it reports. Thread: any.
class AttemptProgress {
 public:
  static constexpr std::uint64_t kUnknown = ~std::uint64_t{0};

  std::atomic<std::uint64_t> bytes{0};
  std::atomic<std::uint64_t> size{kUnknown};  // of the file, once the attempt knows it

  // What the next attempt could go on with, should this one end now.
  void setResume(TransferResume resume) {
    const CMutexLock lock(mutex_);
    resume_ = std::move(resume);
  }
  // Changes it where it lies.
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

// When a file is transferred in several parts at a time.
struct PartPolicy {
  std::uint64_t from = ~std::uint64_t{0};  // least size of the file in bytes
  std::uint64_t size = 0;                  // bytes of a part; 0: chosen by the attempt
  std::uint32_t requests = 1;              // at a time, of all files together
};

// What an attempt is to do.
struct StartOrder {
  AttemptId attemptId = 0;
  FileRef file;
  FileSpec spec;
  std::string folder;     // the group's; downloads only
  TransferResume resume;  // what an attempt before has left
  bool verify = true;
  std::string proxy;
  PartPolicy parts;
  std::uint32_t maxConcurrent = 1;  // requests of all attempts; who has several gives way to others
  std::shared_ptr<AttemptProgress> progress;
};

// How an attempt ended.
struct AttemptOutcome {
  enum class Kind {
    kDone,   // every byte is confirmed
    kRetry,  // may go better next time
    kFinal,  // would fail again
  };

  // Whose trouble it is, and with that how many more attempts there are.
  enum class RetryBudget {
    kCounts,      // it uses up a retry
    kAtLeastOne,  // the same, but whatever is allowed, one more attempt tells whether it is the
                  // file
    kFree,        // neither the file's nor its server's: waiting helps, and uses up nothing
  };

  Kind kind = Kind::kFinal;
  std::string reason{};  // for the log and for people; no secrets
  std::string_view code = failure::kOther;
  RetryBudget retryBudget = RetryBudget::kCounts;
  // What the server asked to wait.
  std::optional<std::chrono::milliseconds> retryAfter{};
  // The server or the network is in trouble, not this file: the group's others wait, too.
  bool sharedTrouble = false;
  // It brought the file so much further that it does not count as one of the retries.
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

// An attempt is to end.
struct AttemptStop {
  AttemptId attemptId = 0;
  bool discard = false;  // it is to leave nothing behind: nobody would find it
  std::string folder{};  // the group's; downloads only
  std::shared_ptr<AttemptProgress> progress{};

  Orphan orphan() const { return {.folder = folder, .resume = progress->resume()}; }
};

// What was left behind is to be cleared away.
struct CleanupTask {
  OrphanId id = 0;
  Orphan orphan;
  std::string proxy;
};

// Told how attempts go. Thread: any.
class IAttemptObserver {
 public:
  virtual void onAttemptsDone(const std::vector<AttemptEnd>& ends) = 0;
  void onAttemptDone(AttemptId attemptId, const AttemptOutcome& outcome) {
    onAttemptsDone({{attemptId, outcome}});
  }
  // Its progress has a resume that is worth to be kept. False when it was stopped meanwhile.
  virtual bool onAttemptCheckpoint(AttemptId attemptId) = 0;
  // Every byte of a download has arrived, and the file is about to appear under its final name.
  // From here on the attempt does not count as a transfer and is only stopped with its file.
  // False when it was stopped meanwhile: then it must not go on.
  virtual bool onAttemptFinalizing(AttemptId attemptId) = 0;
  // Notes what the progress of these holds, on disk if that can be had, before a step that could
  // not be told from it otherwise should the process end: downloads get their final names, a
  // server takes parts of an upload or puts them together. Blocks.
  virtual void keepDurably(const std::vector<AttemptId>& attempts) = 0;
  // Nobody will go on with this: it comes back as an order to discard it.
  virtual void onOrphaned(Orphan orphan) = 0;
  // How an order to discard something went.
  virtual void onCleanedUp(OrphanId id, const AttemptOutcome& outcome) = 0;

 protected:
  ~IAttemptObserver() = default;
};

// Carries out attempts: the seam between the engine, which decides, and the network.
// Thread: the network thread, for all operations and for the answers.
class IAttemptRunner {
 public:
  virtual ~IAttemptRunner() = default;
  // False when the attempt has ended already, with its answer given.
  virtual bool start(StartOrder order) = 0;
  // The attempt ends without an answer. It may have ended by itself already: then only what it left
  // is discarded, if that is wanted.
  virtual void stop(const AttemptStop& stop) = 0;
  virtual void stopAll() = 0;
  // Called once a turn of the network thread; gives the time at which it wants another one.
  virtual std::optional<TimePoint> tick() { return std::nullopt; }
  // Once neither the network nor the pool runs: makes durable what stopped attempts have written,
  // and notes it in their progress. Thread: the owner's.
  virtual void syncToDisk() {}
  // Clears away what an attempt that has ended left behind; the observer is told how that went.
  virtual void discard(const CleanupTask& order) = 0;
};

}  // namespace zt_transfers
