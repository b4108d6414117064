#include "base/worker_pool.h"

#include <utility>

#include "base/this_thread.h"

namespace zt_transfers {

void CWorkerPool::start(unsigned threads) {
  {
    const CMutexLock lock(mutex_);
    if (running_) {
      return;
    }
    running_ = true;
  }
  for (unsigned count = 0; count < threads; ++count) {
    threads_.emplace_back([this] {
      nameThisThread(name_);
      run();
    });
  }
}

void CWorkerPool::stop() {
  std::deque<std::function<void()>> dropped;
  {
    const CMutexLock lock(mutex_);
    running_ = false;
    dropped.swap(tasks_);
  }
  posted_.notifyAll();
  for (std::thread& thread : threads_) {
    thread.join();
  }
  threads_.clear();
}

void CWorkerPool::post(std::function<void()> task) {
  {
    const CMutexLock lock(mutex_);
    if (!running_) {
      return;
    }
    tasks_.push_back(std::move(task));
  }
  posted_.notifyOne();
}

void CWorkerPool::run() {
  CMutexLock lock(mutex_);
  for (;;) {
    posted_.wait(mutex_, [this]() REQUIRES(mutex_) { return !running_ || !tasks_.empty(); });
    if (!running_) {
      return;
    }
    const std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
    lock.lock();
  }
}

}  // namespace zt_transfers
