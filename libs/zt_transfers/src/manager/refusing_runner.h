#pragma once

#include <string>
#include <utility>

#include "engine/attempt.h"

namespace zt_transfers {

// Stands where a kind of transfer is not available: every attempt fails with the reason given.
class CRefusingRunner : public IAttemptRunner {
 public:
  CRefusingRunner(IAttemptObserver& observer, std::string reason)
      : observer_(observer), reason_(std::move(reason)) {}

  bool start(StartOrder order) override {
    observer_.onAttemptDone(order.job, AttemptOutcome::final(reason_));
    return false;
  }
  void stop(JobId /*job*/, bool /*discard*/) override {}
  void stopAll() override {}
  void discard(const Leftover& /*leftover*/) override {}

 private:
  IAttemptObserver& observer_;
  const std::string reason_;
};

}  // namespace zt_transfers
