#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "download/chunk_pool.h"
#include "download/download_attempt.h"
#include "download/file_turns.h"
#include "download/finalizer.h"
#include "download/small_files.h"
#include "engine/attempt.h"

namespace zt_transfers {

// Downloads files over HTTP and gives those that have arrived their final names.
class CDownloadRunner final : public IAttemptRunner, public CDownloadAttempt::IListener {
 public:
  // All must outlive the runner.
  struct Dependencies {
    IHttpTransport& loop;
    IExecutor& pool;
    ILog& log;
    IAttemptObserver& observer;
    IFileOps& fileOps;
  };

  explicit CDownloadRunner(const Dependencies& dependencies)
      : loop_(dependencies.loop),
        pool_(dependencies.pool),
        log_(dependencies.log),
        observer_(dependencies.observer),
        fileOps_(dependencies.fileOps),
        turns_({.loop = loop_,
                .pool = pool_,
                .clock = loop_.clock(),
                .begin = [this](StartOrder order) { begin(std::move(order)); }}),
        finalizer_({.synced = [this](const auto& attempts) { observer_.keepDurably(attempts); },
                    .finalized = [this](const auto& ends) { finalized(ends); }}),
        small_(pool_, finalizer_, chunks_, [this](const auto& ends) { finalized(ends); }) {}

  bool start(StartOrder order) override;
  void stop(const AttemptStop& stop) override;
  void stopAll() override;
  std::optional<TimePoint> tick() override;
  void syncToDisk() override;
  void discard(const CleanupTask& order) override;

 private:
  // An attempt's partial file and its resume data.
  struct Written {
    FileRef ref;
    std::shared_ptr<CPartialFile> file;
    std::shared_ptr<AttemptProgress> progress;
  };
  // An attempt that has ended by itself, and whose received bytes are still being written.
  struct Ended {
    Written written;
    TransferResume before;
    AttemptOutcome outcome;
  };

  void onCheckpoint(AttemptId attemptId) override { observer_.onAttemptCheckpoint(attemptId); }
  void onArrived(AttemptId attemptId, std::uint64_t size) override;
  void onEnded(AttemptId attemptId, const AttemptOutcome& outcome) override;
  bool hasRoom() const override { return requests() < maxConcurrent_; }
  std::size_t requests() const;
  void makeRoom();
  void begin(StartOrder order);
  void settle(AttemptId attemptId, FileRef file, const std::shared_ptr<CPartialWriter>& writer);
  void endTurn(AttemptId attemptId, FileRef ref, std::shared_ptr<CPartialFile> file, bool failed);
  bool report(AttemptId attemptId);
  void finalized(const std::vector<AttemptEnd>& ends);

  IHttpTransport& loop_;
  IExecutor& pool_;
  ILog& log_;
  IAttemptObserver& observer_;
  IFileOps& fileOps_;
  CFileTurns turns_;
  CFinalizer finalizer_;
  CChunkPool chunks_;
  CSmallFiles small_;
  std::size_t maxConcurrent_ = 1;  // requests of all attempts
  std::unordered_map<AttemptId, std::unique_ptr<CDownloadAttempt>> attempts_;
  std::unordered_map<AttemptId, Ended> ended_;
  // Attempts whose bytes have all arrived.
  std::unordered_map<AttemptId, Written> finalizing_;
  std::vector<Written> stopped_;  // synced when the client ends
};

}  // namespace zt_transfers
