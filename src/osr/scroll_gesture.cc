#include "osr/scroll_gesture.h"

#include <utility>

namespace client {

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
}

void ScrollGesture::shortCircuit(const SystemEvent& event) {
  if (event.phase != ScrollPhase::kEnded && event.phase != ScrollPhase::kCancelled) {
    return;
  }
  send_(event);
  if (std::exchange(watching_, false)) {
    monitor_.remove();
  }
}

}  // namespace client
