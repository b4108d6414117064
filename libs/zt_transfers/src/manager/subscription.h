#pragma once

#include <thread>

#include "base/mutex.h"

namespace zt_transfers {

// The program's callback, which it may exchange or take away while another thread calls it.
// Thread: any; `call` by one thread at a time.
template <typename Callback>
class CSubscription {
 public:
  // When it returns, the callback before is not running and will not be called again, unless
  // this is called from within that callback.
  void set(Callback* callback) {
    CMutexLock lock(mutex_);
    callback_ = callback;
    if (calling_ != std::this_thread::get_id()) {
      ended_.wait(mutex_, [this]() REQUIRES(mutex_) { return calling_ == std::thread::id(); });
    }
  }

  template <typename Call>
  void call(Call&& call) {
    Callback* callback = nullptr;
    {
      const CMutexLock lock(mutex_);
      callback = callback_;
      if (callback == nullptr) {
        return;
      }
      calling_ = std::this_thread::get_id();
    }
    call(*callback);
    {
      const CMutexLock lock(mutex_);
      calling_ = std::thread::id();
    }
    ended_.notifyAll();
  }

 private:
  CMutex mutex_;
  CConditionVariable ended_;
  Callback* callback_ GUARDED_BY(mutex_) = nullptr;
  std::thread::id calling_ GUARDED_BY(mutex_);
};

}  // namespace zt_transfers
