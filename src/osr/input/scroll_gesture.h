#pragma once

#include <functional>

#include "osr/input/system_event.h"

namespace client {

// Sees to it that the end of a scroll gesture reaches the browser even outside the view: from the
// gesture's beginning to its end the view watches all scroll events of the application. Thread: UI.
class ScrollGesture {
 public:
  using Send = std::function<void(const SystemEvent&)>;

  // How the system watches scroll events; every one that it sees goes to `shortCircuit`, and then
  // on to where it was going.
  struct Monitor {
    std::function<void()> install;
    std::function<void()> remove;
  };

  ScrollGesture(Monitor monitor, Send send);

  // Watches from now on when a gesture begins with the event, which is not sent.
  void watchFrom(const SystemEvent& event);
  // A scroll event in the view: watches until the gesture's end, and sends it.
  void scrollWheel(const SystemEvent& event);
  // A scroll event that the monitor saw, of which only a gesture's end is sent. Where the view gets
  // that itself, the monitor leaves it to `scrollWheel`.
  void shortCircuit(const SystemEvent& event);

  bool isWatching() const { return watching_; }

 private:
  void stopWatching();

  const Monitor monitor_;
  const Send send_;
  bool watching_ = false;
};

}  // namespace client
