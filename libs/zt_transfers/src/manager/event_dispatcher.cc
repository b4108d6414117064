#include "manager/event_dispatcher.h"

#include <optional>
#include <utility>

#include "base/thread_name.h"
#include "engine/event_throttle.h"

namespace zt_transfers {

CEventDispatcher::CEventDispatcher(std::string name, CEventQueue& events, Dependencies calls)
    : name_(std::move(name)), events_(events), calls_(std::move(calls)) {}

void CEventDispatcher::start() {
  if (!thread_.joinable()) {
    {
      const CMutexLock lock(mutex_);
      stopping_ = false;
    }
    thread_ = std::thread([this] {
      nameThisThread(name_);
      run();
    });
  }
}

void CEventDispatcher::stop() {
  if (thread_.joinable()) {
    {
      const CMutexLock lock(mutex_);
      stopping_ = true;
    }
    stopped_.notifyAll();
    events_.wake();
    thread_.join();
  }
}

// So that a burst of events costs one change of threads and not one each.
bool CEventDispatcher::rest() {
  constexpr std::chrono::milliseconds kRest{4};
  CMutexLock lock(mutex_);
  return !stopped_.waitFor(mutex_, kRest, [this]() REQUIRES(mutex_) { return stopping_; });
}

void CEventDispatcher::run() {
  bool progressing = true;
  bool last = false;
  TimePoint collected{};
  for (;;) {
    const auto events =
        events_.take(last          ? std::optional<Duration>(Duration::zero())
                     : progressing ? std::optional<Duration>(CEventThrottle::kInterval)
                                   : std::nullopt);
    calls_.prepare(events);
    for (const TransferEvent& event : events) {
      calls_.deliver(event);
    }
    if (events.size() > CEventQueue::kCongestion) {
      calls_.caughtUp();
    }
    if (last) {
      return;
    }
    const TimePoint now = std::chrono::steady_clock::now();
    if (now - collected >= CEventThrottle::kInterval) {
      collected = now;
      progressing = calls_.collectProgress();
    } else {
      // Something happened just now; see again in a moment what becomes of it.
      progressing = true;
    }
    last = !rest();
  }
}

}  // namespace zt_transfers
