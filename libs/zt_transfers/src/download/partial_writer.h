#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/worker_pool.h"
#include "download/chunk_pool.h"
#include "download/content_hash.h"
#include "download/partial_file.h"
#include "engine/attempt.h"
#include "http/http_loop.h"

namespace zt_transfers {

// The way of received bytes into a partial file: the network thread hands them over in any order,
// the pool writes them, and beside that hashes them in the file's order and syncs them now and
// then. Who is too quick for the disk is held back, and so is who is too quick for the hash as
// long as the bytes come in order; those that come out of order are read back later.
//
//   handed over ──► written ──► hashed (from memory)
//                      └──────► hashed (read back)
//
// Thread: the loop's, on which the listener is called, too. After close() no call follows; what
// was handed over is written nevertheless.
class CPartialWriter : public std::enable_shared_from_this<CPartialWriter> {
 public:
  class IListener {
   public:
    virtual void onReopened(CPartialFile::Found found, const DownloadResume& resume) = 0;
    // Some of what was handed over is written, and it is not full.
    virtual void onWriterReady() = 0;
    // Everything handed over is written.
    virtual void onWriterIdle() = 0;
    // The file takes no more. May destroy the listener.
    virtual void onWriterFailed(const AttemptOutcome& outcome) = 0;
    virtual void onCheckpoint() = 0;

   protected:
    ~IListener() = default;
  };
  // Called on the pool once everything is written and hashed, instead of the listener; with what
  // went wrong.
  using Last = std::function<void(const std::shared_ptr<CPartialFile>& file,
                                  const std::optional<AttemptOutcome>& trouble)>;

  // All must outlive the loop's and the pool's threads.
  struct Dependencies {
    CHttpLoop& loop;
    CWorkerPool& pool;
    CChunkPool& chunks;
    IAttemptObserver& observer;
    IFileOps& fileOps;
  };

  CPartialWriter(const Dependencies& dependencies, AttemptId attemptId,
                 std::shared_ptr<CPartialFile> file, std::shared_ptr<AttemptProgress> progress,
                 IListener& listener);

  void close();
  const std::shared_ptr<CPartialFile>& file() const { return file_; }

  void reopen(const DownloadResume& resume);
  // Another version comes now; drops what was handed over of the one before.
  void restart(const std::string& validator, std::uint64_t size);
  // Nothing comes any more. The version before stays if not a byte of another has come.
  void endInput();

  // An empty chunk for about `wanted` bytes.
  Chunk chunk(std::uint64_t wanted) { return chunks_.take(wanted); }
  void write(Chunk chunk);
  // The same without hurry: something else follows at once.
  void add(Chunk chunk);
  bool full() const { return held_ >= kMaxHeld; }
  bool idle() const { return !writing_ && batch_.empty(); }
  // Nothing may follow. Closes.
  void finish(Last last);
  // Instead of `finish`, where all of the file is in one chunk and nothing was written yet:
  // somebody else sees to that. Closes.
  struct CompleteBody {
    std::string validator;
    Chunk content;
  };
  std::optional<CompleteBody> takeCompleteBody();

 private:
  // Bytes handed over and not done with.
  static constexpr std::size_t kMaxHeld = 2 * CChunkPool::kLargest;

  // What the next job that writes does, in this order.
  struct Batch {
    std::optional<DownloadResume> reopen;
    struct Restart {
      std::string validator;
      std::uint64_t size = 0;
    };
    std::optional<Restart> restart;
    std::vector<Chunk> chunks;
    Last last;
    std::optional<AttemptOutcome> trouble;  // of a job before: only `last` is to be called

    bool empty() const { return !reopen && !restart && chunks.empty() && !last; }
    // Nothing else may be done to the file meanwhile.
    bool alone() const { return reopen || restart || last; }
  };
  struct Written {
    std::optional<CPartialFile::Found> found;
    DownloadResume resume;
    bool made = false;  // the file is new
    std::optional<AttemptOutcome> trouble;
    std::vector<Chunk> chunks;
  };

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
  void takeHashed(CHashQueue::Pieces& pieces, const std::optional<AttemptOutcome>& trouble);
  void takeSynced(const std::optional<AttemptOutcome>& trouble);
  bool checkpointDue() const;
  void recycle(Chunk chunk);
  void fail(const AttemptOutcome& trouble);

  CHttpLoop& loop_;
  CWorkerPool& pool_;
  CChunkPool& chunks_;
  IAttemptObserver& observer_;
  const AttemptId attemptId_;
  const std::shared_ptr<CPartialFile> file_;  // used by one job of each kind at a time
  const std::shared_ptr<AttemptProgress> progress_;
  CHashQueue hashQueue_;
  IListener* listener_;

  Batch batch_;
  std::size_t held_ = 0;
  bool writing_ = false;
  bool begun_ = false;     // to write
  bool reopened_ = false;  // for the job that writes
  std::optional<AttemptOutcome> trouble_;

  bool syncing_ = false;
  std::uint64_t written_ = 0;  // bytes in the file, of this version
  std::uint64_t durable_ = 0;  // those of them that were synced
  std::chrono::steady_clock::time_point syncedAt_ = std::chrono::steady_clock::now();
};

}  // namespace zt_transfers
