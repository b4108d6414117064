#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "engine/failure.h"
#include "engine/file_phase.h"
#include "engine/parked_files.h"
#include "engine/rate_meter.h"
#include "zt_transfers/transfer_records.h"

namespace zt_transfers {

// The properties that a group is created with.
struct GroupIdentity {
  std::int32_t id = 0;
  std::string bucketId;
  std::string bucketType;
  std::string token;
  std::uint64_t tokenExpires = 0;  // seconds since 1970; 0: never
  std::wstring folder;             // downloads only
};

// A group as it is reported; both managers make their own record from it.
struct GroupSnapshot : GroupStateBase {
  bool marked = false;
  std::int32_t filesCompleted = 0;
  std::wstring folder;
  std::string waitingFor;  // the code of the outage that it waits for; empty: none
};

// The engine's record of one file; everything else is in the queue store.
struct FileSlot {
  std::uint64_t size = 0;     // bytes; 0 until known
  std::uint32_t retries = 0;  // attempts that failed since the file was queued or resumed
  bool sizeKnown = true;      // false until an upload's source was statted
  bool parked = false;        // see CTransferGroup::park
  FilePhase phase = FilePhase::kWaiting;
  std::uint8_t waits = 0;  // attempts in a row that ended by no fault of the file; at most 255
};

// A group's files and counters. Each change of a file updates the counters, so that no operation
// depends on the number of files.
//
// Thread: none of its own; the engine guards it.
class CTransferGroup {
 public:
  // `needsMark`: without the page's mark the group is not COMPLETED.
  CTransferGroup(GroupIdentity identity, bool needsMark);

  const GroupIdentity& identity() const { return identity_; }
  std::int32_t id() const { return identity_.id; }
  const FileSlot& file(std::uint32_t index) const { return files_.at(index); }

  // Adds a waiting file and gives its index.
  std::uint32_t append(std::uint64_t size, bool sizeKnown = true);
  // Adds a stored file: kWaiting, kCompleted, kFailed, or kRemoved for a gap.
  void appendKept(std::uint64_t size, bool sizeKnown, FilePhase phase);
  // The only function that changes a file's phase; mayFollow must allow the change.
  void changePhase(std::uint32_t index, FilePhase to);
  void setSize(std::uint32_t index, std::uint64_t size);
  void countRetry(std::uint32_t index) { ++files_.at(index).retries; }
  void countWait(std::uint32_t index);
  void refundRetries(std::uint32_t index, std::uint32_t retries);
  void forgetRetries(std::uint32_t index);
  // Bytes of attempts under way. An attempt removes what it has added when it ends.
  void addInFlight(std::uint64_t bytes) { inFlight_ += bytes; }
  void removeInFlight(std::uint64_t bytes) { inFlight_ -= bytes; }
  void measureRate(std::uint64_t bytes, TimePoint now) { rate_.add(bytes, now); }

  // The next file to begin: returned files first, then in the order of queueing. The file stays
  // kWaiting until the caller changes its phase, parks it, or puts it back.
  std::optional<std::uint32_t> takeWaiting();
  bool hasReturned() const { return !returned_.empty(); }
  void putBack(std::uint32_t index) { returned_.push_front(index); }
  // Has a file from takeWaiting wait for its turn at its server. It stays kWaiting.
  void park(std::uint32_t index, OriginId origin);
  void parkFirst(std::uint32_t index, OriginId origin);
  std::optional<std::uint32_t> takeParked(OriginId origin);
  const CParkedFiles& parked() const { return parked_; }
  // A parked file has another URL. takeWaiting returns it again.
  void unpark(std::uint32_t index);
  // No file is parked any more; takeWaiting returns all that wait, in the order of queueing.
  void unparkAll();

  // Files that were in this phase; their phase may have changed since. Empties the list.
  std::vector<std::uint32_t> takePaused() { return std::exchange(paused_, {}); }
  std::vector<std::uint32_t> takeFailed() { return std::exchange(failed_, {}); }
  const std::vector<std::uint32_t>& failed() const { return failed_; }
  std::vector<std::uint32_t> backingOff() const { return {backingOff_.begin(), backingOff_.end()}; }

  std::uint32_t count(FilePhase phase) const { return counts_[static_cast<std::size_t>(phase)]; }

  void setPaused(bool paused) { isPaused_ = paused; }
  void setMarked(bool marked) { isMarked_ = marked; }
  // Drops the files; the counters stay, unless the group was completed: its folder was shown to the
  // user then. No attempt may be under way.
  void setCancelled();
  bool paused() const { return isPaused_; }
  bool marked() const { return isMarked_; }
  bool cancelled() const { return isCancelled_; }
  bool completed() const { return state(true) == kGroupCompleted; }

  // `running`: between startup and shutdown.
  GroupStateCode state(bool running) const;
  GroupSnapshot snapshot(bool running, TimePoint now) const;

  // Used by the planner only.
  struct Scheduling {
    bool listed = false;                  // is in the round of groups
    TimePoint notBefore{};                // no file is begun earlier, after trouble with its folder
    std::uint32_t outages = 0;            // in a row, without a success in between
    bool oneByOne = false;                // until bytes move again after an outage
    std::optional<Failure> waitingFor{};  // the outage; until bytes move again
    OriginId troubledBy = 0;              // the last origin that failed an attempt
  };
  Scheduling scheduling;

 private:
  std::uint32_t live() const;
  std::uint32_t left() const;
  float percent(std::uint64_t transferred, bool running) const;

  // Constant after construction.
  const GroupIdentity identity_;
  const bool needsMark_;

  std::deque<FileSlot> files_;
  std::array<std::uint32_t, kFilePhaseCount> counts_{};
  std::uint32_t nextNew_ = 0;           // the first file that was never begun
  std::deque<std::uint32_t> returned_;  // waiting again
  CParkedFiles parked_;
  std::vector<std::uint32_t> paused_;
  std::vector<std::uint32_t> failed_;
  std::unordered_set<std::uint32_t> backingOff_;

  bool isPaused_ = false;
  bool isMarked_ = false;
  bool isCancelled_ = false;

  std::uint64_t total_ = 0;      // bytes of all files that were not removed
  std::uint64_t completed_ = 0;  // bytes of completed files
  std::uint64_t inFlight_ = 0;
  CRateMeter rate_;
};

}  // namespace zt_transfers
