#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "base/clock.h"
#include "base/executor.h"
#include "download/partial_file.h"
#include "engine/attempt.h"

namespace zt_transfers {

// Lets one attempt at a time use a file's partial file. An attempt's turn lasts until its last
// system call, which a slow disk can delay long after the attempt was stopped. The next attempt of
// the same file waits for that, without a thread, and takes the open file over with the digest's
// state. A file that nobody takes over is closed after a while; its digest's state is kept.
//
// Thread: the loop's.
class CFileTurns {
 public:
  static constexpr std::size_t kMaxOpen = 64;
  static constexpr std::chrono::seconds kOpenFor{60};

  // All must outlive it. `begin` is called with an order that has waited.
  struct Dependencies {
    IExecutor& loop;
    IExecutor& pool;
    const IClock& clock;
    std::function<void(StartOrder)> begin;
  };

  explicit CFileTurns(Dependencies dependencies) : dependencies_(std::move(dependencies)) {}

  // Begins the turn of the order's attempt. False when it waits for an earlier one; the order is
  // kept meanwhile.
  bool enter(StartOrder& order);
  // The file that an earlier attempt has left; null: none.
  std::shared_ptr<CPartialFile> takeKept(FileRef file);
  // Ends the attempt's turn. `left` is kept for the next one; null: there is nothing to keep. After
  // a failure of the disk it is closed, as its descriptor may be of a disk that is gone.
  void end(FileRef file, AttemptId attemptId, std::shared_ptr<CPartialFile> left, bool failed);
  // Forgets the order if it waits.
  void cancel(AttemptId attemptId);
  // The kept file that is this orphan; null: none.
  std::shared_ptr<CPartialFile> takeOrphan(const Orphan& orphan);
  // Closes what was kept open for long enough. Returns when that is due next.
  std::optional<TimePoint> tick();
  void clear() { turns_.clear(); }

 private:
  // Files whose digest's state is kept; a few hundred bytes each.
  static constexpr std::size_t kMaxKept = 4096;
  // Uses a file in an attempt's place while the pool closes it.
  static constexpr AttemptId kCloser = ~AttemptId{0};
  static constexpr AttemptId kNobody = kCloser - 1;

  using Key = std::pair<std::int32_t, std::uint32_t>;
  struct Turn {
    AttemptId user = kNobody;
    std::shared_ptr<CPartialFile> kept;
    TimePoint since{};  // kept
    std::optional<StartOrder> next;

    bool keepsOpen() const { return kept && kept->open(); }
  };
  using Turns = std::map<Key, Turn>;

  static Key keyOf(FileRef file) { return {file.groupId, file.index}; }
  void close(Turns::iterator turn, std::shared_ptr<CPartialFile> file, bool failed);
  Turns::iterator oldest(bool open);
  void keepFew();
  void drop(std::shared_ptr<CPartialFile> file);

  const Dependencies dependencies_;
  Turns turns_;
};

}  // namespace zt_transfers
