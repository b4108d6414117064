#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace zt_transfers {

// The program's callback, which it may exchange or take away while another thread calls it.
// Thread: any; `call` by one thread at a time.
template <typename Callback>
class CSubscription {
 public:
  // When it returns, the callback before is not running and will not be called again, unless
  // this is called from within that callback.
  void set(Callback* callback) {
    std::unique_lock lock(mutex_);
    callback_ = callback;
    if (calling_ != std::this_thread::get_id()) {
      ended_.wait(lock, [this] { return calling_ == std::thread::id(); });
    }
  }

  template <typename Call>
  void call(Call&& call) {
    Callback* callback = nullptr;
    {
      const std::lock_guard lock(mutex_);
      callback = callback_;
      if (callback == nullptr) {
        return;
      }
      calling_ = std::this_thread::get_id();
    }
    call(*callback);
    {
      const std::lock_guard lock(mutex_);
      calling_ = std::thread::id();
    }
    ended_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable ended_;
  // Guarded by mutex_.
  Callback* callback_ = nullptr;
  std::thread::id calling_;
};

}  // namespace zt_transfers
