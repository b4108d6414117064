// Input of an off-screen browser.
#pragma once

#include <QPointF>
#include <QPointer>
#include <optional>

#include "include/internal/cef_types_wrappers.h"

class QQuickWidget;
class QWidget;

namespace cef_qt {

class OffScreenBrowser;

// Turns the framework's events into Qt's, for the page or its open pop-up. Points are the client's
// view points. Ownership: the off-screen browser's. UI thread.
class OffScreenInput {
 public:
  explicit OffScreenInput(OffScreenBrowser& browser) : browser_(browser) {}
  ~OffScreenInput();
  OffScreenInput(const OffScreenInput&) = delete;
  OffScreenInput& operator=(const OffScreenInput&) = delete;

  // The input that had the latest event; null when that is gone.
  static OffScreenInput* lastUsed();

  void click(const CefMouseEvent& event, cef_mouse_button_type_t type, bool up, int clickCount);
  void move(const CefMouseEvent& event, bool leaves);
  void wheel(const CefMouseEvent& event, int deltaX, int deltaY);
  // A RAWKEYDOWN waits for its CHAR, which comes in the same turn, as Qt has one event for both.
  void key(const CefKeyEvent& event);
  void setFocus(bool focus);

  // A drag that the page began is over: the button that began it is up.
  void dragEnded();

  // The point in the hidden view.
  QPointF toView(const CefMouseEvent& event) const;

  // A press is held back for its character; what must not come before it asks for it.
  void sendWaitingKey();

 private:
  struct Target {
    QWidget* widget;
    QPointF local;
    QPointF global;
  };
  // The latest press, as Chromium in Qt knows it.
  struct Press {
    Qt::MouseButton button = Qt::NoButton;
    QPoint point;
    quint64 ms = 0;
  };
  quint64 timeOfPress(Qt::MouseButton button, const QPoint& point, int clickCount);
  std::optional<Target> targetOf(const CefMouseEvent& event);
  void sendKey(const CefKeyEvent& event, bool press, char16_t character);
  void used();

  OffScreenBrowser& browser_;
  std::optional<CefKeyEvent> waitingKey_;
  unsigned int keyTurn_ = 0;
  // Where the button went down gets the moves and the release.
  QPointer<QWidget> pressed_;
  Press lastPress_;
};

}  // namespace cef_qt
