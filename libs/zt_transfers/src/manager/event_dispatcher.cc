#include "manager/event_dispatcher.h"

#include <optional>
#include <utility>

#include "base/this_thread.h"
#include "engine/event_throttle.h"

namespace zt_transfers {

CEventDispatcher::CEventDispatcher(std::string name, CEventQueue& events, Dependencies dependencies)
    : name_(std::move(name)), events_(events), dependencies_(std::move(dependencies)) {}

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

// Waits so that a burst of events costs one thread switch and not one each.
bool CEventDispatcher::gather() {
  constexpr std::chrono::milliseconds kGather{4};
  CMutexLock lock(mutex_);
  return !stopped_.waitFor(mutex_, kGather, [this]() REQUIRES(mutex_) { return stopping_; });
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
    dependencies_.prepare(events);
    for (const TransferEvent& event : events) {
      dependencies_.deliver(event);
    }
    if (events.size() > CEventQueue::kCongestion) {
      dependencies_.caughtUp();
    }
    if (last) {
      return;
    }
    const TimePoint now = std::chrono::steady_clock::now();
    if (now - collected >= CEventThrottle::kInterval) {
      collected = now;
      progressing = dependencies_.collectProgress();
    } else {
      // Too early; progress of what has just begun may be due soon.
      progressing = true;
    }
    last = !gather();
  }
}

}  // namespace zt_transfers
