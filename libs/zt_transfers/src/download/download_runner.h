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

// Carries out download attempts over HTTP, and puts in place what has arrived. All given must
// outlive it.
class CDownloadRunner final : public IAttemptRunner, public CDownloadAttempt::IListener {
 public:
  CDownloadRunner(CHttpLoop& loop, CWorkerPool& pool, ILog& log, IAttemptObserver& observer)
      : loop_(loop),
        pool_(pool),
        log_(log),
        observer_(observer),
        lander_({.synced = [this](const auto& jobs) { observer_.keepDurably(jobs); },
                 .landed = [this](const auto& ends) { landed(ends); }}),
        small_(pool, lander_, chunks_, [this](const auto& ends) { landed(ends); }) {}

  bool start(StartOrder order) override;
  void stop(const AttemptStop& stop) override;
  void stopAll() override;
  std::optional<TimePoint> turn() override { return small_.turn(loop_.clock().now()); }
  void settle() override;
  void discard(const DiscardOrder& order) override;

 private:
  // What an attempt has written, and where that is noted.
  struct Rest {
    std::shared_ptr<CPartialFile> file;
    std::shared_ptr<JobProgress> progress;
  };

  void onCheckpoint(JobId job) override { observer_.onAttemptCheckpoint(job); }
  void onArrived(JobId job, std::uint64_t size) override;
  void onEnded(JobId job, const AttemptOutcome& outcome) override;
  bool hasRoom() const override { return requests() < mostAtOnce_; }
  std::size_t requests() const;
  void makeRoom();
  void release(std::unique_ptr<CDownloadAttempt> attempt);
  void landed(const std::vector<AttemptEnd>& ends);

  CHttpLoop& loop_;
  CWorkerPool& pool_;
  ILog& log_;
  IAttemptObserver& observer_;
  CLander lander_;
  CChunkPool chunks_;
  CSmallFiles small_;
  std::size_t mostAtOnce_ = 1;  // requests of all attempts
  std::unordered_map<JobId, std::unique_ptr<CDownloadAttempt>> attempts_;
  // Those that need the network no more.
  std::unordered_map<JobId, Rest> landing_;
  std::vector<Rest> stopped_;  // at the end, to be settled
};

}  // namespace zt_transfers
