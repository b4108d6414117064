#include "power/sleep_guard.h"

#include <utility>

#include "base/this_thread.h"

namespace zt_transfers {

CSleepGuard::CSleepGuard(std::string threadName, std::unique_ptr<ISleepInhibitor> inhibitor,
                         std::chrono::milliseconds linger)
    : threadName_(std::move(threadName)), inhibitor_(std::move(inhibitor)), linger_(linger) {}

void CSleepGuard::start() {
  {
    const CMutexLock lock(mutex_);
    stopping_ = false;
  }
  thread_ = std::thread([this] { run(); });
}

void CSleepGuard::stop() {
  if (thread_.joinable()) {
    {
      const CMutexLock lock(mutex_);
      change(stopping_, true);
    }
    thread_.join();
  }
}

void CSleepGuard::setWanted(bool wanted) {
  const CMutexLock lock(mutex_);
  change(wanted_, wanted);
}

void CSleepGuard::setTransferring(bool transferring) {
  const CMutexLock lock(mutex_);
  change(transferring_, transferring);
}

void CSleepGuard::change(bool& flag, bool value) {
  if (std::exchange(flag, value) != value) {
    changed_.notifyOne();
  }
}

void CSleepGuard::run() {
  nameThisThread(threadName_);
  CMutexLock lock(mutex_);
  while (!stopping_) {
    changed_.wait(mutex_, [this]() REQUIRES(mutex_) { return mustHold() || stopping_; });
    if (mustHold()) {
      lock.unlock();
      inhibitor_->inhibit();
      lock.lock();
      waitForEnd();
      lock.unlock();
      inhibitor_->release();
      lock.lock();
    }
  }
}

void CSleepGuard::waitForEnd() {
  do {
    changed_.wait(mutex_, [this]() REQUIRES(mutex_) { return !mustHold(); });
    changed_.waitFor(mutex_, linger_,
                     [this]() REQUIRES(mutex_) { return mustHold() || !wanted_ || stopping_; });
  } while (mustHold());
}

}  // namespace zt_transfers
