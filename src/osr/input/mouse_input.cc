#include "osr/input/mouse_input.h"

#include "osr/input/event_flags.h"
#include "osr/renderer/osr_renderer.h"

namespace client {

void MouseInput::handle(const SystemEvent& event) {
  switch (event.kind) {
    case EventKind::kLeftDown:
    case EventKind::kLeftUp:
      sendMouseClick(event, MBT_LEFT, event.kind == EventKind::kLeftUp);
      break;
    case EventKind::kOtherDown:
    case EventKind::kOtherUp:
      sendMouseClick(event, MBT_MIDDLE, event.kind == EventKind::kOtherUp);
      break;
    case EventKind::kRightDown:
      rightDown(event);
      break;
    case EventKind::kRightUp:
      rightUp(event);
      break;
    case EventKind::kExited:
      sendMouseMove(event, true);
      break;
    case EventKind::kScroll:
      sendScrollWheel(event);
      break;
    case EventKind::kMoved:
    case EventKind::kEntered:
    case EventKind::kLeftDragged:
    case EventKind::kRightDragged:
    case EventKind::kOtherDragged:
      sendMouseMove(event, false);
      break;
    default:
      break;
  }
}

void MouseInput::rightDown(const SystemEvent& event) {
  if ((event.modifiers & kShift) != 0) {
    rotation_.begin(event.point);
  } else {
    sendMouseClick(event, MBT_RIGHT, false);
  }
}

void MouseInput::rightUp(const SystemEvent& event) {
  if (rotation_.isRotating()) {
    rotation_.end(view_.renderer());
    view_.redraw();
  } else {
    sendMouseClick(event, MBT_RIGHT, true);
  }
}

void MouseInput::sendMouseClick(const SystemEvent& event, cef_mouse_button_type_t button,
                                bool isUp) {
  const CefRefPtr<CefBrowserHost> target = host();
  if (!target) {
    return;
  }
  const PopupPlace popup = popupPlaceOf(view_);
  const bool overPopup = popup.isUnder(event.point);
  if (!isUp) {
    wasLastMouseDownOnView_ = !overPopup;
  } else if (wasLastMouseDownOnView_ && overPopup && popup.isDisplaced()) {
    // A press on the page must not end as a click in a pop-up that is elsewhere for the engine.
    return;
  }
  target->SendMouseClickEvent(recordOf(event, popup), button, isUp, event.clickCount);
}

void MouseInput::sendMouseMove(const SystemEvent& event, bool leaves) {
  if (rotation_.isRotating() && !leaves) {
    rotation_.move(event.point, view_.renderer());
    view_.redraw();
    return;
  }
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->SendMouseMoveEvent(recordOf(event, popupPlaceOf(view_)), leaves);
  }
}

void MouseInput::sendScrollWheel(const SystemEvent& event) {
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->SendMouseWheelEvent(recordOf(event, popupPlaceOf(view_)),
                                static_cast<int>(event.deltaX), static_cast<int>(event.deltaY));
  }
}

CefMouseEvent MouseInput::recordOf(const SystemEvent& event, const PopupPlace& popup) {
  return mouseEventAt(popup.toEngine(event.point), getModifiersForEvent(event));
}

CefRefPtr<CefBrowserHost> MouseInput::host() const {
  const CefRefPtr<CefBrowser> browser = view_.browser();
  return browser ? browser->GetHost() : nullptr;
}

}  // namespace client
