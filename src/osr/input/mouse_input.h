#pragma once

#include "osr/input/popup_place.h"
#include "osr/input/rotation.h"
#include "osr/input/system_event.h"

namespace client {

// Turns pointer events into the browser's. Ownership: the view's, which must outlive it. Thread:
// UI.
class MouseInput {
 public:
  explicit MouseInput(OsrView& view) : view_(view) {}
  MouseInput(const MouseInput&) = delete;
  MouseInput& operator=(const MouseInput&) = delete;

  // Takes every kind of pointer event: presses, releases, moves, entering, leaving and scrolling.
  void handle(const SystemEvent& event);

  void sendMouseClick(const SystemEvent& event, cef_mouse_button_type_t button, bool isUp);
  void sendMouseMove(const SystemEvent& event, bool leaves);
  void sendScrollWheel(const SystemEvent& event);

  // Whether the last press was on the page, not on its pop-up.
  bool wasLastMouseDownOnView() const { return wasLastMouseDownOnView_; }
  void setWasLastMouseDownOnView(bool was) { wasLastMouseDownOnView_ = was; }

 private:
  void rightDown(const SystemEvent& event);
  void rightUp(const SystemEvent& event);
  static CefMouseEvent recordOf(const SystemEvent& event, const PopupPlace& popup);
  // Null without a browser.
  CefRefPtr<CefBrowserHost> host() const;

  OsrView& view_;
  Rotation rotation_;
  bool wasLastMouseDownOnView_ = false;
};

}  // namespace client
