#include "osr/input/mouse_input.h"

#include <cmath>

#include "osr/input/system_event.h"
#include "osr/renderer/osr_renderer.h"

namespace client {

namespace {

// The open pop-up as drawn and as placed by the engine, in view points; empty without a pop-up.
struct PopupPosition {
  CefRect drawn;
  CefRect given;

  bool isUnder(const OsrPoint& point) const;
  int offsetX() const { return given.x - drawn.x; }
  int offsetY() const { return given.y - drawn.y; }
  bool isDisplaced() const { return offsetX() != 0 || offsetY() != 0; }

  // The point in the engine's coordinates.
  OsrPoint toEngine(const OsrPoint& point) const;
};

bool PopupPosition::isUnder(const OsrPoint& point) const {
  return point.x >= drawn.x && point.x < drawn.x + drawn.width && point.y >= drawn.y &&
         point.y < drawn.y + drawn.height;
}

OsrPoint PopupPosition::toEngine(const OsrPoint& point) const {
  if (!isUnder(point)) {
    return point;
  }
  return {point.x + offsetX(), point.y + offsetY()};
}

PopupPosition popupPositionOf(OsrView& view) {
  const OsrRenderer& renderer = view.renderer();
  return {view.convertRectFromBacking(renderer.popupRect()),
          view.convertRectFromBacking(renderer.givenPopupRect())};
}

// Adds to the rest and takes its whole part out.
int takeWhole(double& rest, double delta) {
  const double whole = std::trunc(rest + delta);
  rest += delta - whole;
  return static_cast<int>(whole);
}

CefMouseEvent recordOf(const SystemEvent& event, const PopupPosition& popup) {
  return mouseEventAt(popup.toEngine(event.point), getModifiersForEvent(event));
}

}  // namespace

void Rotation::begin(const OsrPoint& point) {
  lastMousePos_ = point;
  curMousePos_ = point;
  rotating_ = true;
}

void Rotation::move(const OsrPoint& point, OsrRenderer& renderer) {
  curMousePos_ = point;
  renderer.setSpin(renderer.spinX() - static_cast<float>(curMousePos_.x - lastMousePos_.x),
                   renderer.spinY() - static_cast<float>(curMousePos_.y - lastMousePos_.y));
  lastMousePos_ = curMousePos_;
}

void Rotation::end(OsrRenderer& renderer) {
  renderer.setSpin(0, 0);
  rotating_ = false;
}

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
  const PopupPosition popup = popupPositionOf(view_);
  const bool overPopup = popup.isUnder(event.point);
  if (!isUp) {
    wasLastMouseDownOnView_ = !overPopup;
  } else if (wasLastMouseDownOnView_ && overPopup && popup.isDisplaced()) {
    // A press on the page must not become a click in a pop-up that the engine placed elsewhere.
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
    target->SendMouseMoveEvent(recordOf(event, popupPositionOf(view_)), leaves);
  }
}

void MouseInput::sendScrollWheel(const SystemEvent& event) {
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->SendMouseWheelEvent(recordOf(event, popupPositionOf(view_)),
                                takeWhole(unsentScrolling_.x, event.deltaX),
                                takeWhole(unsentScrolling_.y, event.deltaY));
  }
}

CefRefPtr<CefBrowserHost> MouseInput::host() const {
  const CefRefPtr<CefBrowser> browser = view_.browser();
  return browser ? browser->GetHost() : nullptr;
}

}  // namespace client
