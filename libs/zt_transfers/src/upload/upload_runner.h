#pragma once

#include <memory>
#include <unordered_map>

#include "engine/attempt.h"
#include "upload/upload_attempt.h"

namespace zt_transfers {

// Carries out upload attempts over HTTP. All given must outlive it.
class CUploadRunner : public IAttemptRunner {
 public:
  CUploadRunner(CHttpLoop& loop, CWorkerPool& pool, ILog& log, IAttemptObserver& observer)
      : loop_(loop), pool_(pool), log_(log), observer_(observer) {}

  bool start(StartOrder order) override;
  void stop(JobId job, bool /*discard*/) override { attempts_.erase(job); }
  void stopAll() override { attempts_.clear(); }
  void discard(const Leftover& /*leftover*/) override {}

 private:
  CHttpLoop& loop_;
  CWorkerPool& pool_;
  ILog& log_;
  IAttemptObserver& observer_;
  std::unordered_map<JobId, std::unique_ptr<CUploadAttempt>> attempts_;
};

}  // namespace zt_transfers
