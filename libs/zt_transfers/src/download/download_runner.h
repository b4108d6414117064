#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "download/chunk_pool.h"
#include "download/download_attempt.h"
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
        finalizer_({.synced = [this](const auto& attempts) { observer_.keepDurably(attempts); },
                    .finalized = [this](const auto& ends) { finalized(ends); }}),
        small_(pool_, finalizer_, chunks_, [this](const auto& ends) { finalized(ends); }) {}

  bool start(StartOrder order) override;
  void stop(const AttemptStop& stop) override;
  void stopAll() override;
  std::optional<TimePoint> tick() override { return small_.tick(loop_.clock().now()); }
  void syncToDisk() override;
  void discard(const CleanupTask& order) override;

 private:
  // An attempt's partial file and its resume data.
  struct Written {
    std::shared_ptr<CPartialFile> file;
    std::shared_ptr<AttemptProgress> progress;
  };

  void onCheckpoint(AttemptId attemptId) override { observer_.onAttemptCheckpoint(attemptId); }
  void onArrived(AttemptId attemptId, std::uint64_t size) override;
  void onEnded(AttemptId attemptId, const AttemptOutcome& outcome) override;
  bool hasRoom() const override { return requests() < maxConcurrent_; }
  std::size_t requests() const;
  void makeRoom();
  void closeOnPool(const std::shared_ptr<CPartialWriter>& writer);
  void finalized(const std::vector<AttemptEnd>& ends);

  IHttpTransport& loop_;
  IExecutor& pool_;
  ILog& log_;
  IAttemptObserver& observer_;
  IFileOps& fileOps_;
  CFinalizer finalizer_;
  CChunkPool chunks_;
  CSmallFiles small_;
  std::size_t maxConcurrent_ = 1;  // requests of all attempts
  std::unordered_map<AttemptId, std::unique_ptr<CDownloadAttempt>> attempts_;
  // Attempts whose bytes have all arrived.
  std::unordered_map<AttemptId, Written> finalizing_;
  std::vector<Written> stopped_;  // synced when the client ends
};

}  // namespace zt_transfers
