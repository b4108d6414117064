#include "upload/upload_runner.h"

#include <utility>

namespace zt_transfers {

bool CUploadRunner::start(StartOrder order) {
  const JobId job = order.job;
  auto attempt = std::make_unique<CUploadAttempt>(loop_, pool_, log_, std::move(order),
                                                  [this, job](const AttemptOutcome& outcome) {
                                                    attempts_.erase(job);
                                                    observer_.onAttemptDone(job, outcome);
                                                  });
  CUploadAttempt& begun = *attempt;
  attempts_.emplace(job, std::move(attempt));
  begun.begin();
  return attempts_.count(job) != 0;
}

}  // namespace zt_transfers
