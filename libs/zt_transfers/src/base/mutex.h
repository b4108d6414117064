#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

// A mutex whose use clang checks at compile time (-Wthread-safety, see script/lint). A member that
// is GUARDED_BY a mutex is only used while that mutex is held. A function that REQUIRES a mutex is
// only called while it is held. The attributes are empty for other compilers.
//
// Lock order: a thread that holds several mutexes has locked them in this order.
//   1. CManagerCore, while it opens or closes the queue
//   2. CTransferEngine
//   3. CQueueCache, which the engine calls
//   4. CQueueWriter, which the cache wakes
// The list of all logs is locked before a log. While any other mutex is held, nothing is called
// that locks another one.
#if defined(__clang__)
#define ZT_THREAD_ANNOTATION(annotation) __attribute__((annotation))
#else
#define ZT_THREAD_ANNOTATION(annotation)
#endif

#define CAPABILITY(name) ZT_THREAD_ANNOTATION(capability(name))
#define SCOPED_CAPABILITY ZT_THREAD_ANNOTATION(scoped_lockable)
#define GUARDED_BY(mutex) ZT_THREAD_ANNOTATION(guarded_by(mutex))
#define REQUIRES(...) ZT_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define ACQUIRE(...) ZT_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define RELEASE(...) ZT_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define ASSERT_CAPABILITY(mutex) ZT_THREAD_ANNOTATION(assert_capability(mutex))
#define NO_THREAD_SAFETY_ANALYSIS ZT_THREAD_ANNOTATION(no_thread_safety_analysis)

namespace zt_transfers {

class CAPABILITY("mutex") CMutex {
 public:
  void lock() ACQUIRE() { mutex_.lock(); }
  void unlock() RELEASE() { mutex_.unlock(); }
  // For a lambda that runs only with the mutex held, which clang cannot see. Checks nothing.
  void assertHeld() const ASSERT_CAPABILITY(this) {}

 private:
  friend class CConditionVariable;

  std::mutex mutex_;
};

// Holds a mutex for the length of a block; may be unlocked and locked again in between.
class SCOPED_CAPABILITY CMutexLock {
 public:
  explicit CMutexLock(CMutex& mutex) ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~CMutexLock() RELEASE() {
    if (held_) {
      mutex_.unlock();
    }
  }
  CMutexLock(const CMutexLock&) = delete;
  CMutexLock& operator=(const CMutexLock&) = delete;

  void lock() ACQUIRE() {
    mutex_.lock();
    held_ = true;
  }
  void unlock() RELEASE() {
    held_ = false;
    mutex_.unlock();
  }

 private:
  CMutex& mutex_;
  bool held_ = true;
};

// As std::condition_variable, for a CMutex that the caller holds. A predicate is a lambda that
// REQUIRES that mutex.
class CConditionVariable {
 public:
  template <class Predicate>
  void wait(CMutex& mutex, Predicate predicate) REQUIRES(mutex) NO_THREAD_SAFETY_ANALYSIS {
    Lent lent(mutex);
    condition_.wait(lent.lock, predicate);
  }

  // Returns the predicate's last result, which is false if the limit was reached first.
  template <class Predicate>
  bool waitFor(CMutex& mutex, std::chrono::steady_clock::duration limit, Predicate predicate)
      REQUIRES(mutex) NO_THREAD_SAFETY_ANALYSIS {
    Lent lent(mutex);
    return condition_.wait_for(lent.lock, limit, predicate);
  }
  template <class Predicate>
  bool waitUntil(CMutex& mutex, std::chrono::steady_clock::time_point end, Predicate predicate)
      REQUIRES(mutex) NO_THREAD_SAFETY_ANALYSIS {
    Lent lent(mutex);
    return condition_.wait_until(lent.lock, end, predicate);
  }

  void notifyOne() noexcept { condition_.notify_one(); }
  void notifyAll() noexcept { condition_.notify_all(); }

 private:
  // Lends the mutex, which stays locked, to the condition variable.
  struct Lent {
    explicit Lent(CMutex& mutex) : lock(mutex.mutex_, std::adopt_lock) {}
    ~Lent() { lock.release(); }
    std::unique_lock<std::mutex> lock;
  };

  std::condition_variable condition_;
};

}  // namespace zt_transfers
