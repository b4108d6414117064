#pragma once

#include <thread>

#include "base/mutex.h"

namespace zt_transfers {

// The program's callback, which may be replaced or removed while another thread calls it.
// Thread: any; `call` by one thread at a time.
template <typename Callback>
class CSubscription {
 public:
  // When this returns, the former callback is not running and will not be called again, unless
  // this is called from within that callback.
  void set(Callback* callback) {
    CMutexLock lock(mutex_);
    callback_ = callback;
    if (calling_ != std::this_thread::get_id()) {
      ended_.wait(mutex_, [this]() REQUIRES(mutex_) { return calling_ == std::thread::id(); });
    }
  }

  // Exceptions of `call` pass through.
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
    const Caller caller(*this);
    call(*callback);
  }

 private:
  // Ends the call, also when it throws.
  class Caller {
   public:
    explicit Caller(CSubscription& subscription) : subscription_(subscription) {}
    ~Caller() {
      {
        const CMutexLock lock(subscription_.mutex_);
        subscription_.calling_ = std::thread::id();
      }
      subscription_.ended_.notifyAll();
    }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

   private:
    CSubscription& subscription_;
  };

  CMutex mutex_;
  CConditionVariable ended_;
  Callback* callback_ GUARDED_BY(mutex_) = nullptr;
  std::thread::id calling_ GUARDED_BY(mutex_);
};

}  // namespace zt_transfers
