#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/clock.h"
#include "base/executor.h"
#include "download/chunk_pool.h"
#include "download/content_hash.h"
#include "download/partial_file.h"
#include "engine/attempt.h"
#include "http/http_transport.h"

namespace zt_transfers {

// The states of CPartialWriter, whose function `enter` is the one that changes them:
//
//   kUnused ──► kOpen ──► kFailed ─┐
//      │          │          │     │
//      │          ├──────────┴─────┼──► kFinishing   finish()
//      └──────────┴────────────────┴──► kClosed      close(), takeCompleteBody()
enum class WriterState : std::uint8_t {
  kUnused,     // no job has been posted: the file does not exist yet
  kOpen,       // jobs write what is passed to the writer
  kFailed,     // the file cannot be written; its owner finishes or closes the writer
  kFinishing,  // the listener is not called any more; the last job reports
  kClosed,     // the listener is not called any more
};

constexpr bool mayFollow(WriterState from, WriterState to) {
  switch (to) {
    case WriterState::kUnused:
      return false;
    case WriterState::kOpen:
      return from == WriterState::kUnused;
    case WriterState::kFailed:
      return from == WriterState::kOpen;
    case WriterState::kFinishing:
    case WriterState::kClosed:
      return from != WriterState::kFinishing && from != WriterState::kClosed;
  }
  return false;
}

// Writes received bytes into a partial file. The network thread passes them on in any order, and
// jobs on the pool write them, hash them in file order, and sync them now and then. The network is
// held back while the disk is slower, and also while hashing is slower than bytes that arrive in
// order; bytes out of order are read back later.
//
//   received ──► written ──► hashed from memory
//                   └──────► hashed after being read back
//
// Thread: the loop's, on which the listener is called, too. No call follows close() or finish();
// received bytes are written nevertheless.
class CPartialWriter : public std::enable_shared_from_this<CPartialWriter> {
 public:
  class IListener {
   public:
    virtual void onReopened(CPartialFile::Found found, const DownloadResume& resume) = 0;
    // Some bytes were written, and the writer is not full.
    virtual void onWriterReady() = 0;
    // The file cannot be written. This is the last call.
    virtual void onWriterFailed(const AttemptOutcome& outcome) = 0;
    virtual void onCheckpoint() = 0;

   protected:
    ~IListener() = default;
  };
  // Called on the pool, instead of the listener, once all bytes are written and hashed; with the
  // failure, if any.
  using Last = std::function<void(const std::shared_ptr<CPartialFile>& file,
                                  const std::optional<AttemptOutcome>& failure)>;

  // All must outlive the loop's and the pool's threads.
  struct Dependencies {
    IHttpTransport& loop;
    IExecutor& pool;
    CChunkPool& chunks;
    IAttemptObserver& observer;
    IFileOps& fileOps;
  };

  CPartialWriter(const Dependencies& dependencies, AttemptId attemptId,
                 std::shared_ptr<CPartialFile> file, std::shared_ptr<AttemptProgress> progress,
                 IListener& listener);

  // Bytes that arrived are still written, and hashed where they are in memory.
  void close();
  // After close(). `settled` is called once the file is used no more, perhaps at once; with whether
  // the file could not be written or read.
  using Settled = std::function<void(bool failed)>;
  void whenSettled(Settled settled);
  const std::shared_ptr<CPartialFile>& file() const { return file_; }

  void reopen(const DownloadResume& resume);
  // Another version follows; drops bytes of the previous one that are not written yet.
  void restart(const std::string& validator, std::uint64_t size);
  // No bytes follow. The previous version stays if no byte of another one has arrived.
  void endInput();

  // An empty chunk for about `wanted` bytes.
  Chunk chunk(std::uint64_t wanted) { return chunks_.take(wanted); }
  void write(Chunk chunk);
  // Does not start to write: something else follows at once.
  void add(Chunk chunk);
  bool full() const { return held_ >= kMaxHeld; }
  // Nothing may follow.
  void finish(Last last);
  // Closes the writer and returns the body if all of the file is in one chunk and no job was posted
  // yet. Then the caller writes it. Otherwise use finish().
  struct CompleteBody {
    std::string validator;
    Chunk content;
  };
  std::optional<CompleteBody> takeCompleteBody();

 private:
  // Bytes that are passed to the writer and neither written nor hashed.
  static constexpr std::size_t kMaxHeld = 2 * CChunkPool::kLargest;

  using State = WriterState;

  // The work of the next writing job, in this order.
  struct Batch {
    std::optional<DownloadResume> reopen;
    struct Restart {
      std::string validator;
      std::uint64_t size = 0;
    };
    std::optional<Restart> restart;
    std::vector<Chunk> chunks;
    Last last;
    std::optional<AttemptOutcome> failure;  // of an earlier job: only `last` is called

    bool empty() const { return !reopen && !restart && chunks.empty() && !last; }
    // No other job may use the file meanwhile.
    bool alone() const { return reopen || restart || last; }
  };
  struct Written {
    std::optional<CPartialFile::Found> found;
    DownloadResume resume;
    bool made = false;  // the file is new
    std::optional<AttemptOutcome> failure;
    std::vector<Chunk> chunks;
  };

  void enter(State next);
  bool reports() const { return state_ == State::kUnused || state_ == State::kOpen; }
  void post();
  bool mayWrite() const;
  void postWrite();
  void postHash();
  void postSync();

  Written work(Batch& batch);
  void carryOut(Batch& batch, Written& written);
  bool withdraw();
  void hashNext();

  void take(Written& written);
  void takeHashed(CHashQueue::Entries& entries, const std::optional<AttemptOutcome>& failure);
  void takeSynced(const std::optional<AttemptOutcome>& failure);
  bool checkpointDue() const;
  void checkSettled();
  void recycle(Chunk chunk);
  void fail(const AttemptOutcome& failure);

  IHttpTransport& loop_;
  IExecutor& pool_;
  CChunkPool& chunks_;
  IAttemptObserver& observer_;
  const AttemptId attemptId_;
  const std::shared_ptr<CPartialFile> file_;  // used by one job of each kind at a time
  const std::shared_ptr<AttemptProgress> progress_;
  CHashQueue hashQueue_;
  IListener& listener_;

  State state_ = State::kUnused;
  Batch batch_;
  std::size_t held_ = 0;
  bool writing_ = false;   // a job writes
  bool reopened_ = false;  // used by that job only
  std::optional<AttemptOutcome> failure_;
  Settled settled_;

  bool syncing_ = false;       // a job syncs
  std::uint64_t written_ = 0;  // bytes of this version in the file
  std::uint64_t durable_ = 0;  // those of them that were synced
  TimePoint syncedAt_;
};

}  // namespace zt_transfers
