#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "base/executor.h"
#include "download/chunk_pool.h"
#include "download/finalizer.h"
#include "engine/attempt.h"

namespace zt_transfers {

// Creates, writes and verifies files that have arrived completely and are still in memory. One job
// on the pool handles several of them, hashes them together, and passes them to the finalizer
// together, because a change of threads costs more than such a file.
//
// Thread: the loop's. Pool, finalizer and chunks must outlive the pool's jobs.
class CSmallFiles {
 public:
  struct Arrived {
    CFinalizer::Arrival arrival;
    std::string validator;
    std::uint64_t size = 0;  // bytes
    Chunk content;           // all of it; without memory for an empty file
    std::optional<AttemptOutcome> failure{};
  };

  // Called on the pool for files with wrong content and for those that cannot be written.
  using Failed = std::function<void(const std::vector<AttemptEnd>& ends)>;

  CSmallFiles(IExecutor& pool, CFinalizer& finalizer, CChunkPool& chunks, Failed failed)
      : pool_(pool), finalizer_(finalizer), chunks_(chunks), failed_(std::move(failed)) {}

  void add(Arrived file, TimePoint now);
  // Starts a job for files that have waited long enough. Returns when to call it again, if files
  // wait.
  std::optional<TimePoint> tick(TimePoint now);
  // Forgets files for which no job has started.
  void clear() { waiting_.clear(); }

 private:
  using Batch = std::vector<Arrived>;

  bool enough() const;
  void begin();
  void finish(Batch batch);

  IExecutor& pool_;
  CFinalizer& finalizer_;
  CChunkPool& chunks_;
  const Failed failed_;
  Batch waiting_;
  TimePoint since_{};  // when the first of them was added
};

}  // namespace zt_transfers
