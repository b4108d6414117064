#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "download/partial_file.h"
#include "engine/attempt.h"
#include "http/http_loop.h"
#include "threads/worker_pool.h"

namespace zt_transfers {

// The way of received bytes into a partial file: the network thread hands them over, the pool
// writes and hashes them, one job at a time. Who is too quick for the disk is held back.
//
// Thread: the loop's, on which the listener is called, too. After close() no call follows; what
// was handed over is written nevertheless.
class CPartialWriter : public std::enable_shared_from_this<CPartialWriter> {
 public:
  static constexpr std::size_t kChunk = std::size_t{512} * 1024;  // bytes

  struct Chunk {
    std::unique_ptr<char[]> data;
    std::size_t capacity = 0;
    std::size_t size = 0;
    std::uint64_t offset = 0;
  };
  class IListener {
   public:
    virtual void onReopened(CPartialFile::Found found, const DownloadResume& resume) = 0;
    // Not full any more.
    virtual void onWriterReady() = 0;
    // Everything handed over is written.
    virtual void onWriterIdle() = 0;
    // The file takes no more. May destroy the listener.
    virtual void onWriterFailed(const AttemptOutcome& outcome) = 0;
    virtual void onCheckpoint() = 0;

   protected:
    ~IListener() = default;
  };
  // Called on the pool once everything is written, instead of the listener; with what went wrong.
  using Last = std::function<void(const std::shared_ptr<CPartialFile>& file,
                                  const std::optional<AttemptOutcome>& trouble)>;

  CPartialWriter(CHttpLoop& loop, CWorkerPool& pool, std::shared_ptr<CPartialFile> file,
                 std::shared_ptr<JobProgress> progress, IListener& listener);

  void close();
  const std::shared_ptr<CPartialFile>& file() const { return file_; }

  void reopen(const DownloadResume& resume);
  // Another version comes now; drops what was handed over of the one before.
  void restart(const std::string& validator, std::uint64_t size);

  // An empty chunk for about `wanted` bytes.
  Chunk chunk(std::uint64_t wanted);
  void write(Chunk chunk);
  // The same without hurry: something else follows at once.
  void add(Chunk chunk);
  bool full() const { return queued_ >= kMostQueued; }
  bool idle() const { return !working_ && batch_.empty(); }
  // Nothing may follow. Closes.
  void finish(Last last);

 private:
  static constexpr std::size_t kMostQueued = 4 * kChunk;  // bytes handed over and not written

  // What the next job does, in this order.
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
  };
  struct Result {
    std::optional<CPartialFile::Found> found;
    DownloadResume resume;
    bool checkpoint = false;
    std::optional<AttemptOutcome> trouble;
    std::vector<Chunk> spare;
  };

  void post();
  Result work(Batch& batch);
  void carryOut(Batch& batch, Result& result);
  bool checkpointDue() const;
  void take(Result& result);

  CHttpLoop& loop_;
  CWorkerPool& pool_;
  const std::shared_ptr<CPartialFile> file_;  // used by one pool job at a time
  const std::shared_ptr<JobProgress> progress_;
  IListener* listener_;

  Batch batch_;
  std::size_t queued_ = 0;
  bool working_ = false;
  std::optional<AttemptOutcome> trouble_;
  std::vector<Chunk> spare_;

  // The pool job's.
  std::uint64_t durable_ = 0;
  std::chrono::steady_clock::time_point syncedAt_ = std::chrono::steady_clock::now();
};

}  // namespace zt_transfers
