#include "osr/input/scroll_gesture.h"

#include <utility>

namespace client {
namespace {

bool isEnd(const SystemEvent& event) {
  return event.phase == ScrollPhase::kEnded || event.phase == ScrollPhase::kCancelled;
}

}  // namespace

ScrollGesture::ScrollGesture(Monitor monitor, Send send)
    : monitor_(std::move(monitor)), send_(std::move(send)) {}

void ScrollGesture::watchFrom(const SystemEvent& event) {
  if (event.phase == ScrollPhase::kBegan && !watching_) {
    watching_ = true;
    monitor_.install();
  }
}

void ScrollGesture::scrollWheel(const SystemEvent& event) {
  watchFrom(event);
  send_(event);
  if (isEnd(event)) {
    stopWatching();
  }
}

void ScrollGesture::shortCircuit(const SystemEvent& event) {
  if (isEnd(event)) {
    send_(event);
    stopWatching();
  }
}

void ScrollGesture::stopWatching() {
  if (std::exchange(watching_, false)) {
    monitor_.remove();
  }
}

}  // namespace client
