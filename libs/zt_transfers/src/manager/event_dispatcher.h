#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "base/mutex.h"
#include "engine/event_queue.h"

namespace zt_transfers {

// The thread that delivers a manager's events to the program. A slow program gets fewer progress
// events, and never an event out of order; it does not delay running transfers. Events within a few
// milliseconds are delivered together.
//
// Thread: start and stop by the owner.
class CEventDispatcher {
 public:
  struct Dependencies {
    // Called before these events are delivered.
    std::function<void(const std::vector<TransferEvent>&)> prepare;
    std::function<void(const TransferEvent&)> deliver;
    // Queues events for progress that is due; false when nothing can make progress.
    std::function<bool()> collectProgress;
    // A long queue of events was delivered.
    std::function<void()> caughtUp;
  };

  CEventDispatcher(std::string name, CEventQueue& events, Dependencies dependencies);
  ~CEventDispatcher() { stop(); }
  CEventDispatcher(const CEventDispatcher&) = delete;
  CEventDispatcher& operator=(const CEventDispatcher&) = delete;

  void start();
  // Delivers what is queued, then joins the thread.
  void stop();

 private:
  void run();
  // False when the dispatcher stops.
  bool gather();

  const std::string name_;
  CEventQueue& events_;
  const Dependencies dependencies_;
  std::thread thread_;

  CMutex mutex_;
  CConditionVariable stopped_;
  bool stopping_ GUARDED_BY(mutex_) = false;
};

}  // namespace zt_transfers
