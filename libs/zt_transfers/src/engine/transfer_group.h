#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "engine/failure.h"
#include "engine/file_phase.h"
#include "base/clock.h"
#include "engine/rate_meter.h"
#include "zt_transfers/transfer_records.h"

namespace zt_transfers {

// What a group is from its creation on.
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
  std::string waitingFor;  // the code of what keeps it from going on; empty: nothing
};

// What the engine itself holds of one file; everything else is in the queue store.
struct FileSlot {
  std::uint64_t size = 0;     // bytes; 0 until known
  std::uint16_t retries = 0;  // attempts that failed since the file was queued or resumed
  bool sizeKnown = true;      // false until an upload's source was looked at
  FilePhase phase = FilePhase::kWaiting;
};

// The files of a group and its counters, kept up with each change of a file, so that nothing
// here depends on how many files there are.
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
  // Adds a file as it was kept: kWaiting, kCompleted, kFailed, or kRemoved for a gap.
  void appendKept(std::uint64_t size, bool sizeKnown, FilePhase phase);
  // The only place where a file's phase changes; the step must be one that mayFollow allows.
  void changePhase(std::uint32_t index, FilePhase to);
  void setSize(std::uint32_t index, std::uint64_t size);
  void countRetry(std::uint32_t index) { ++files_.at(index).retries; }
  void forgetRetries(std::uint32_t index) { files_.at(index).retries = 0; }
  // Bytes of attempts under way: what an attempt adds here it takes back when it ends.
  void addInFlight(std::uint64_t bytes) { inFlight_ += bytes; }
  void removeInFlight(std::uint64_t bytes) { inFlight_ -= bytes; }
  void measureRate(std::uint64_t bytes, TimePoint now) { rate_.add(bytes, now); }

  // The next file to begin: those that come back first, then in the order of queueing. It stays
  // kWaiting and must be moved on, or be put back.
  std::optional<std::uint32_t> takeWaiting();
  void putBack(std::uint32_t index) { returned_.push_front(index); }

  // Files that have been in this phase; check each, it can have moved on. Empties the list.
  std::vector<std::uint32_t> takePaused() { return std::exchange(paused_, {}); }
  std::vector<std::uint32_t> takeFailed() { return std::exchange(failed_, {}); }
  const std::vector<std::uint32_t>& failed() const { return failed_; }
  std::vector<std::uint32_t> backingOff() const { return {backingOff_.begin(), backingOff_.end()}; }

  std::uint32_t count(FilePhase phase) const { return counts_[static_cast<std::size_t>(phase)]; }

  void setPaused(bool paused) { isPaused_ = paused; }
  void setMarked(bool marked) { isMarked_ = marked; }
  // The counters stay as they are, the files are gone. No attempt may be under way.
  void setCancelled();
  bool paused() const { return isPaused_; }
  bool marked() const { return isMarked_; }
  bool cancelled() const { return isCancelled_; }

  // `running`: between startup and shutdown.
  GroupStateCode state(bool running) const;
  GroupSnapshot snapshot(bool running, TimePoint now) const;

  // The scheduler's notes on this group.
  struct Pace {
    bool listed = false;                  // stands in the scheduler's round
    TimePoint notBefore{};                // the server or the network needs a rest until then
    std::uint32_t troubles = 0;           // rests in a row without a success
    std::optional<Failure> waitingFor{};  // why it rests; until something moves again
  };
  Pace pace;

 private:
  std::uint32_t live() const;
  std::uint32_t left() const;
  float percent(std::uint64_t transferred, bool running) const;

  // Constant after construction.
  const GroupIdentity identity_;
  const bool needsMark_;

  std::deque<FileSlot> files_;
  std::array<std::uint32_t, kFilePhaseCount> counts_{};
  std::uint32_t nextNew_ = 0;           // files from here on were never begun
  std::deque<std::uint32_t> returned_;  // begun once, waiting again
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
