// Mouse and key input of an off-screen browser.
#pragma once

#include <QPointF>
#include <QPointer>
#include <optional>

#include "include/internal/cef_types_wrappers.h"

class QQuickWidget;
class QWidget;

namespace cef_qt {

class OffScreenBrowser;

// Sends the framework's events as Qt events to the page or its open pop-up. Coordinates are view
// points of the client. Owned by the off-screen browser. UI thread.
class OffScreenInput {
 public:
  explicit OffScreenInput(OffScreenBrowser& browser) : browser_(browser) {}
  ~OffScreenInput();
  OffScreenInput(const OffScreenInput&) = delete;
  OffScreenInput& operator=(const OffScreenInput&) = delete;

  // The object that received the latest event; null once it is destroyed.
  static OffScreenInput* latest();

  void click(const CefMouseEvent& event, cef_mouse_button_type_t type, bool up, int clickCount);
  void move(const CefMouseEvent& event, bool leaves);
  void wheel(const CefMouseEvent& event, int deltaX, int deltaY);
  // Qt has one event for a RAWKEYDOWN and its CHAR, so a RAWKEYDOWN is held back until the CHAR or
  // the next task.
  void key(const CefKeyEvent& event);
  void setFocus(bool focus);

  // Releases the button with which a drag of the page began.
  void dragEnded();

  // Converts to pixels of the view.
  QPointF toView(const CefMouseEvent& event) const;

  // Sends a key press that is held back. To be called before events that must follow it.
  void sendHeldKey();

 private:
  struct Target {
    QWidget* widget;
    QPointF local;
    QPointF global;
  };
  // The latest press as Qt WebEngine saw it.
  struct Press {
    Qt::MouseButton button = Qt::NoButton;
    QPoint point;
    quint64 ms = 0;
  };
  QPoint angleOf(int deltaX, int deltaY);
  quint64 timeOfPress(Qt::MouseButton button, const QPoint& point, int clickCount);
  std::optional<Target> targetOf(const CefMouseEvent& event);
  bool isChosenFrom(const QWidget* popup) const;
  void sendClick(const Target& target, const CefMouseEvent& event, cef_mouse_button_type_t type,
                 bool up, int clickCount);
  void sendKey(const CefKeyEvent& event, bool press, char16_t character);
  void noteInput();

  OffScreenBrowser& browser_;
  std::optional<CefKeyEvent> heldKey_;
  unsigned int keySequence_ = 0;
  // The widget with the pressed button; it also receives the moves and the release.
  QPointer<QWidget> pressed_;
  QPointer<QWidget> openAtPress_;  // the pop-up
  bool movedSincePress_ = false;
  Press lastPress_;
  QPointF unsentAngle_;  // of the wheel, below one unit
};

}  // namespace cef_qt
