#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "base/mutex.h"
#include "engine/event_queue.h"

namespace zt_transfers {

// The thread on which a manager tells the program its events. A program that takes its time
// gets its progress reports less often and no event out of order; it holds up no transfer that
// runs. Events that follow each other within a few milliseconds are told together.
//
// Thread: start and stop by the owner.
class CEventDispatcher {
 public:
  struct Dependencies {
    // These are about to be delivered.
    std::function<void(const std::vector<TransferEvent>&)> prepare;
    std::function<void(const TransferEvent&)> deliver;
    // Adds progress that is due to the events; false when none is to be expected.
    std::function<bool()> collectProgress;
    // A long queue of events was worked off.
    std::function<void()> caughtUp;
  };

  CEventDispatcher(std::string name, CEventQueue& events, Dependencies calls);
  ~CEventDispatcher() { stop(); }
  CEventDispatcher(const CEventDispatcher&) = delete;
  CEventDispatcher& operator=(const CEventDispatcher&) = delete;

  void start();
  // Delivers what is queued, then joins the thread.
  void stop();

 private:
  void run();
  // False when the notifier stops.
  bool rest();

  const std::string name_;
  CEventQueue& events_;
  const Dependencies calls_;
  std::thread thread_;

  CMutex mutex_;
  CConditionVariable stopped_;
  bool stopping_ GUARDED_BY(mutex_) = false;
};

}  // namespace zt_transfers
