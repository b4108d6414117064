#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "base/worker_pool.h"
#include "download/chunk_pool.h"
#include "download/finalizer.h"
#include "engine/attempt.h"

namespace zt_transfers {

// Makes, writes and checks files that have arrived whole and are still in memory: several in one
// job of the pool, which hashes them together and hands them to the lander together. A change of
// threads costs more than such a file.
//
// Thread: the loop's. Pool, lander and chunks must outlive the pool's jobs.
class CSmallFiles {
 public:
  struct Arrived {
    CFinalizer::Arrival finalization;
    std::string validator;
    std::uint64_t size = 0;  // bytes
    Chunk content;           // all of them; without memory for an empty file
    std::optional<AttemptOutcome> trouble{};
  };

  // Called on the pool for those that are not what they should be, or cannot be written.
  using Failed = std::function<void(const std::vector<AttemptEnd>& ends)>;

  CSmallFiles(CWorkerPool& pool, CFinalizer& finalizer, CChunkPool& chunks, Failed failed)
      : pool_(pool), finalizer_(finalizer), chunks_(chunks), failed_(std::move(failed)) {}

  void add(Arrived file, TimePoint now);
  // Begins with what has waited for others long enough; gives the time for the next look, if any.
  std::optional<TimePoint> tick(TimePoint now);
  // Forgets what has not begun.
  void clear() { waiting_.clear(); }

 private:
  using Batch = std::vector<Arrived>;

  bool enough() const;
  void begin();
  void finish(Batch batch);

  CWorkerPool& pool_;
  CFinalizer& finalizer_;
  CChunkPool& chunks_;
  const Failed failed_;
  Batch waiting_;
  TimePoint since_{};  // the first of them waits
};

}  // namespace zt_transfers
