#pragma once

#include <memory>
#include <unordered_map>

#include "engine/attempt.h"
#include "upload/upload_attempt.h"

namespace zt_transfers {

// Carries out upload attempts over HTTP. All dependencies must outlive it.
class CUploadRunner final : public IAttemptRunner, public CUploadAttempt::IListener {
 public:
  explicit CUploadRunner(const UploadDependencies& dependencies);

  bool start(StartOrder order) override;
  void stop(const AttemptStop& stop) override;
  void stopAll() override;
  void discard(const CleanupTask& order) override;

 private:
  void onEnded(AttemptId attemptId, const AttemptOutcome& outcome) override;
  void offerSlots();

  const UploadDependencies dependencies_;
  CServerTraits servers_;
  CRequestSlots slots_;
  bool offering_ = false;
  CMultipartAborter aborter_;
  std::unordered_map<AttemptId, std::unique_ptr<CUploadAttempt>> attempts_;
};

}  // namespace zt_transfers
