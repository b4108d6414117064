#pragma once

#include <memory>
#include <unordered_map>

#include "engine/attempt.h"
#include "upload/upload_attempt.h"

namespace zt_transfers {

// Carries out upload attempts over HTTP. All given must outlive it.
class CUploadRunner final : public IAttemptRunner, public CUploadAttempt::IListener {
 public:
  explicit CUploadRunner(const UploadTools& tools);

  bool start(StartOrder order) override;
  void stop(const AttemptStop& stop) override;
  void stopAll() override;
  void discard(const DiscardOrder& order) override;

 private:
  void onEnded(JobId job, const AttemptOutcome& outcome) override;
  void offerSlots();

  const UploadTools tools_;
  CMultipartSupport support_;
  CDigestTags digestTags_;
  CRequestSlots slots_;
  bool offering_ = false;
  CSessionAborts aborts_;
  std::unordered_map<JobId, std::unique_ptr<CUploadAttempt>> attempts_;
};

}  // namespace zt_transfers
