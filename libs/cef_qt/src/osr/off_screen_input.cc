#include "osr/off_screen_input.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QQuickItem>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QStyleHints>
#include <QWheelEvent>
#include <algorithm>
#include <chrono>
#include <utility>

#include "osr/event_flags_qt.h"
#include "osr/key_codes.h"
#include "osr/off_screen_browser.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

OffScreenInput* last = nullptr;

// Chromium in Qt scrolls so many pixels for each line of a wheel's step of 120.
constexpr double kPixelsOfALine = 20;

// What of a wheel makes Chromium scroll by these pixels.
QPoint angleOf(int deltaX, int deltaY) {
  const double factor = 120 / (kPixelsOfALine * QApplication::wheelScrollLines());
  return {qRound(deltaX * factor), qRound(deltaY * factor)};
}

// The item that the page is drawn in; null when there is none. Chromium's own items have no
// run-time type information, by which the sanitizer would know them.
[[gnu::no_sanitize("vptr")]] QQuickItem* focusItemBelow(const QQuickItem& item) {
  QQuickItem* found = nullptr;
  for (QQuickItem* const child : item.childItems()) {
    found = found ? found : child->hasFocus() ? child : focusItemBelow(*child);
  }
  return found;
}

}  // namespace

OffScreenInput::~OffScreenInput() {
  if (last == this) {
    last = nullptr;
  }
}

OffScreenInput* OffScreenInput::lastUsed() {
  return last;
}

void OffScreenInput::used() {
  last = this;
  sendWaitingKey();
  browser_.watchCursor();
}

QPointF OffScreenInput::toView(const CefMouseEvent& event) const {
  return QPointF(event.x, event.y) * browser_.scale();
}

std::optional<OffScreenInput::Target> OffScreenInput::targetOf(const CefMouseEvent& event) {
  const QPointF inView = toView(event);
  const QPointF global = browser_.view()->mapToGlobal(inView);
  QWidget* widget = pressed_;
  if (!widget) {
    widget = browser_.popupAt(inView.toPoint());
  }
  if (!widget) {
    widget = browser_.page();
  }
  if (!widget) {
    return std::nullopt;
  }
  return Target{widget, widget->mapFromGlobal(global), global};
}

void OffScreenInput::click(const CefMouseEvent& event, cef_mouse_button_type_t type, bool up,
                           int clickCount) {
  used();
  const auto target = targetOf(event);
  if (!target) {
    return;
  }
  const Qt::MouseButton button = buttonOf(type);
  Qt::MouseButtons held = buttonsOf(event.modifiers);
  held.setFlag(button, !up);
  QEvent::Type kind = QEvent::MouseButtonRelease;
  if (!up) {
    kind = clickCount % 2 == 0 && clickCount > 0 ? QEvent::MouseButtonDblClick
                                                 : QEvent::MouseButtonPress;
    pressed_ = target->widget;
  }
  QMouseEvent sent(kind, target->local, target->global, button, held,
                   keyboardModifiersOf(event.modifiers));
  if (up) {
    pressed_ = nullptr;
  } else {
    sent.setTimestamp(timeOfPress(button, target->global.toPoint(), clickCount));
  }
  QApplication::sendEvent(target->widget, &sent);
}

// Chromium in Qt counts clicks itself, by the times and places of presses: the time is such that it
// comes to the client's count. Without times, every press in one place would be one more.
quint64 OffScreenInput::timeOfPress(Qt::MouseButton button, const QPoint& point, int clickCount) {
  const QStyleHints& hints = *QGuiApplication::styleHints();
  const auto interval = static_cast<quint64>(hints.mouseDoubleClickInterval());
  const auto now = static_cast<quint64>(std::chrono::ceil<std::chrono::milliseconds>(
                                            std::chrono::steady_clock::now().time_since_epoch())
                                            .count());
  const bool isNear = button == lastPress_.button &&
                      (point - lastPress_.point).manhattanLength() <= hints.startDragDistance();
  quint64 time = now;
  if (clickCount > 1) {
    time = std::clamp(now, lastPress_.ms, lastPress_.ms + interval);
  } else if (isNear) {
    time = std::max(now, lastPress_.ms + interval + 1);
  }
  lastPress_ = {button, point, time};
  return time;
}

void OffScreenInput::move(const CefMouseEvent& event, bool leaves) {
  used();
  const auto target = targetOf(event);
  if (!target) {
    return;
  }
  if (leaves) {
    browser_.ignoreCursor();
    QEvent sent(QEvent::Leave);
    QApplication::sendEvent(target->widget, &sent);
    return;
  }
  QMouseEvent sent(QEvent::MouseMove, target->local, target->global, Qt::NoButton,
                   buttonsOf(event.modifiers), keyboardModifiersOf(event.modifiers));
  QApplication::sendEvent(target->widget, &sent);
}

void OffScreenInput::dragEnded() {
  if (const QPointer<QWidget> target = std::exchange(pressed_, nullptr)) {
    // The drag's end was the button's, too; Chromium counts presses and releases.
    QMouseEvent sent(QEvent::MouseButtonRelease, QPointF(-1, -1),
                     target->mapToGlobal(QPointF(-1, -1)), Qt::LeftButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(target, &sent);
  }
}

void OffScreenInput::wheel(const CefMouseEvent& event, int deltaX, int deltaY) {
  used();
  const auto target = targetOf(event);
  if (!target) {
    return;
  }
  QWheelEvent sent(target->local, target->global, QPoint(), angleOf(deltaX, deltaY),
                   buttonsOf(event.modifiers), keyboardModifiersOf(event.modifiers),
                   Qt::NoScrollPhase, false);
  QApplication::sendEvent(target->widget, &sent);
}

void OffScreenInput::key(const CefKeyEvent& event) {
  switch (event.type) {
    case KEYEVENT_RAWKEYDOWN:
      used();
      waitingKey_ = event;
      postTo(TID_UI, [browser = QPointer<OffScreenBrowser>(&browser_), turn = ++keyTurn_] {
        if (browser && browser->input().keyTurn_ == turn) {
          browser->input().sendWaitingKey();
        }
      });
      break;
    case KEYEVENT_CHAR:
      if (const auto waiting = std::exchange(waitingKey_, std::nullopt)) {
        sendKey(*waiting, true, event.character);
      } else {
        sendKey(event, true, event.character);
      }
      break;
    case KEYEVENT_KEYDOWN:
      used();
      sendKey(event, true, event.character);
      break;
    case KEYEVENT_KEYUP:
      used();
      sendKey(event, false, event.character);
      break;
  }
}

void OffScreenInput::sendWaitingKey() {
  if (const auto waiting = std::exchange(waitingKey_, std::nullopt)) {
    sendKey(*waiting, true, 0);
  }
}

void OffScreenInput::sendKey(const CefKeyEvent& event, bool press, char16_t character) {
  QWidget* const target = browser_.page();
  if (!target) {
    return;
  }
  const int key = event.type == KEYEVENT_CHAR ? 0 : qtKeyOf(event.windows_key_code, character);
  const QString text = character == 0 ? QString() : QString(QChar(character));
  QKeyEvent sent(press ? QEvent::KeyPress : QEvent::KeyRelease, key,
                 keyboardModifiersOf(event.modifiers), static_cast<quint32>(event.native_key_code),
                 0, nativeModifiersOf(event.modifiers), text);
  QApplication::sendEvent(target, &sent);
}

void OffScreenInput::setFocus(bool focus) {
  QQuickWidget* const target = browser_.page();
  if (!target) {
    return;
  }
  if (focus) {
    last = this;
  }
  // Qt hands it on to the page's item only while no other window of the application has the focus,
  // and the client's view has.
  const QPointer<QObject> item = focusItemBelow(*target->quickWindow()->contentItem());
  const auto send = [focus](QObject* receiver) {
    QFocusEvent sent(focus ? QEvent::FocusIn : QEvent::FocusOut, Qt::OtherFocusReason);
    QApplication::sendEvent(receiver, &sent);
  };
  send(target);
  if (item) {
    send(item);
  }
}

}  // namespace cef_qt
