#pragma once

#include "osr/input/system_event.h"
#include "osr/view/osr_view.h"

namespace client {

// Rotates the drawn page while the right button, pressed with Shift, is held. Thread: UI.
class Rotation {
 public:
  bool isRotating() const { return rotating_; }

  void begin(const OsrPoint& point);
  // Follows the pointer.
  void move(const OsrPoint& point, OsrRenderer& renderer);
  // Resets the rotation.
  void end(OsrRenderer& renderer);

 private:
  OsrPoint lastMousePos_;
  OsrPoint curMousePos_;
  bool rotating_ = false;
};

// Converts pointer events for the browser. Ownership: the view's, which must outlive it. Thread:
// UI.
class MouseInput {
 public:
  explicit MouseInput(OsrView& view) : view_(view) {}
  MouseInput(const MouseInput&) = delete;
  MouseInput& operator=(const MouseInput&) = delete;

  // Handles presses, releases, moves, entering, leaving and scrolling.
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
  // Null without a browser.
  CefRefPtr<CefBrowserHost> host() const;

  OsrView& view_;
  Rotation rotation_;
  bool wasLastMouseDownOnView_ = false;
  // Scrolled by the system but not yet by the browser, which takes whole points only.
  OsrPoint unsentScrolling_{0, 0};
};

}  // namespace client
