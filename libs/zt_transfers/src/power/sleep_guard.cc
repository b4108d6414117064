#include "power/sleep_guard.h"

#include <utility>

#include "base/thread_name.h"

namespace zt_transfers {

CSleepGuard::CSleepGuard(std::string threadName, std::unique_ptr<ISleepInhibitor> inhibitor,
                         std::chrono::milliseconds linger)
    : threadName_(std::move(threadName)), inhibitor_(std::move(inhibitor)), linger_(linger) {}

void CSleepGuard::start() {
  stopping_ = false;
  thread_ = std::thread([this] { run(); });
}

void CSleepGuard::stop() {
  if (thread_.joinable()) {
    set(stopping_, true);
    thread_.join();
  }
}

void CSleepGuard::setWanted(bool wanted) {
  set(wanted_, wanted);
}

void CSleepGuard::setTransferring(bool transferring) {
  set(transferring_, transferring);
}

void CSleepGuard::set(bool& flag, bool value) {
  {
    const std::lock_guard lock(mutex_);
    if (std::exchange(flag, value) == value) {
      return;
    }
  }
  changed_.notify_one();
}

void CSleepGuard::run() {
  nameThisThread(threadName_);
  std::unique_lock lock(mutex_);
  while (!stopping_) {
    changed_.wait(lock, [this] { return mustHold() || stopping_; });
    if (mustHold()) {
      lock.unlock();
      inhibitor_->inhibit();
      lock.lock();
      waitForEnd(lock);
      lock.unlock();
      inhibitor_->release();
      lock.lock();
    }
  }
}

void CSleepGuard::waitForEnd(std::unique_lock<std::mutex>& lock) {
  do {
    changed_.wait(lock, [this] { return !mustHold(); });
    changed_.wait_for(lock, linger_, [this] { return mustHold() || !wanted_ || stopping_; });
  } while (mustHold());
}

}  // namespace zt_transfers
