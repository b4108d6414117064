#include "manager/notifier.h"

#include <optional>
#include <utility>

#include "engine/reporter.h"
#include "os/thread_name.h"

namespace zt_transfers {

CNotifier::CNotifier(std::string name, CEventQueue& events, Calls calls)
    : name_(std::move(name)), events_(events), calls_(std::move(calls)) {}

void CNotifier::start() {
  if (!thread_.joinable()) {
    stopping_ = false;
    thread_ = std::thread([this] {
      nameThisThread(name_);
      run();
    });
  }
}

void CNotifier::stop() {
  if (thread_.joinable()) {
    stopping_ = true;
    events_.poke();
    thread_.join();
  }
}

void CNotifier::run() {
  bool progressing = true;
  TimePoint collected{};
  for (;;) {
    const bool last = stopping_;
    const auto events = events_.take(last          ? std::optional<Duration>(Duration::zero())
                                     : progressing ? std::optional<Duration>(CReporter::kInterval)
                                                   : std::nullopt);
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
    if (now - collected >= CReporter::kInterval) {
      collected = now;
      progressing = calls_.collectProgress();
    } else {
      // Something happened just now; see again in a moment what becomes of it.
      progressing = true;
    }
  }
}

}  // namespace zt_transfers
