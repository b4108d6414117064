#pragma once

#include <functional>

#include "osr/input/system_event.h"

namespace client {

// Delivers the end of a scroll gesture to the browser even outside the view: during a gesture it
// monitors all scroll events of the application. Thread: UI.
class ScrollGesture {
 public:
  using Send = std::function<void(const SystemEvent&)>;

  // Installs and removes the system's monitor of scroll events. Each monitored event is passed to
  // `shortCircuit` and then delivered as usual.
  struct Monitor {
    std::function<void()> install;
    std::function<void()> remove;
  };

  ScrollGesture(Monitor monitor, Send send);

  // Starts monitoring if the event begins a gesture. Does not send the event.
  void watchFrom(const SystemEvent& event);
  // A scroll event in the view: sends it, and monitors until the gesture ends.
  void scrollWheel(const SystemEvent& event);
  // A monitored scroll event: only a gesture's end is sent. A monitor must skip events that the
  // view itself gets.
  void shortCircuit(const SystemEvent& event);

  bool isWatching() const { return watching_; }

 private:
  void stopWatching();

  const Monitor monitor_;
  const Send send_;
  bool watching_ = false;
};

}  // namespace client
