#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "base/mutex.h"
#include "power/sleep_inhibitor.h"

namespace zt_transfers {

// Keeps the machine awake during transfers, if that is wanted. Calls to the system are made on a
// thread of its own, so that they delay no transfer.
//
// Thread: start and stop by the owner, everything else any.
class CSleepGuard {
 public:
  // The machine is kept awake for `linger` after a transfer, so that a series of small files causes
  // no series of calls to the system.
  CSleepGuard(std::string threadName, std::unique_ptr<ISleepInhibitor> inhibitor,
              std::chrono::milliseconds linger = std::chrono::seconds(1));
  ~CSleepGuard() { stop(); }
  CSleepGuard(const CSleepGuard&) = delete;
  CSleepGuard& operator=(const CSleepGuard&) = delete;

  void start();
  // Lets the machine sleep.
  void stop();

  void setWanted(bool wanted);
  void setTransferring(bool transferring);

 private:
  void run();
  void waitForEnd() REQUIRES(mutex_);
  void change(bool& flag, bool value) REQUIRES(mutex_);
  bool mustHold() const REQUIRES(mutex_) { return wanted_ && transferring_ && !stopping_; }

  const std::string threadName_;
  const std::unique_ptr<ISleepInhibitor> inhibitor_;  // the guard's thread only
  const std::chrono::milliseconds linger_;
  std::thread thread_;

  CMutex mutex_;
  CConditionVariable changed_;
  bool wanted_ GUARDED_BY(mutex_) = false;
  bool transferring_ GUARDED_BY(mutex_) = false;
  bool stopping_ GUARDED_BY(mutex_) = false;
};

}  // namespace zt_transfers
