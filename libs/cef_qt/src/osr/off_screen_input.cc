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

#include "osr/event_conversion.h"
#include "osr/off_screen_browser.h"
#include "threads/post_for.h"

namespace cef_qt {
namespace {

OffScreenInput* latestInput = nullptr;

// Qt WebEngine scrolls by this distance for each line of a wheel step of 120.
constexpr double kPixelsPerLine = 20;

// The item that shows the page; null if there is none. Chromium's items have no run-time type
// information, which the sanitizer would need.
[[gnu::no_sanitize("vptr")]] QQuickItem* focusItemBelow(const QQuickItem& item) {
  QQuickItem* found = nullptr;
  for (QQuickItem* const child : item.childItems()) {
    found = found ? found : child->hasFocus() ? child : focusItemBelow(*child);
  }
  return found;
}

}  // namespace

OffScreenInput::~OffScreenInput() {
  if (latestInput == this) {
    latestInput = nullptr;
  }
}

OffScreenInput* OffScreenInput::latest() {
  return latestInput;
}

void OffScreenInput::noteInput() {
  latestInput = this;
  sendHeldKey();
  browser_.cursor().watch();
}

QPointF OffScreenInput::toView(const CefMouseEvent& event) const {
  return QPointF(event.x, event.y) * browser_.scale();
}

std::optional<OffScreenInput::Target> OffScreenInput::targetOf(const CefMouseEvent& event) {
  const QPointF inView = toView(event);
  const QPointF global = browser_.view()->mapToGlobal(inView);
  QWidget* widget = browser_.popupAt(inView.toPoint());
  // A list that the press has opened takes the pointer once that is moved over it.
  if (pressed_ && (!widget || !isChosenFrom(widget))) {
    widget = pressed_;
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
  noteInput();
  const auto target = targetOf(event);
  if (!target) {
    return;
  }
  if (up && pressed_ && target->widget != pressed_) {
    dragEnded();
    // The list has seen no press, without which it chooses nothing.
    sendClick(*target, event, type, false, 1);
  }
  if (!up) {
    pressed_ = target->widget;
    openAtPress_ = browser_.popup();
    movedSincePress_ = false;
  }
  sendClick(*target, event, type, up, clickCount);
}

bool OffScreenInput::isChosenFrom(const QWidget* popup) const {
  return popup != openAtPress_ && popup != pressed_ && movedSincePress_;
}

void OffScreenInput::sendClick(const Target& target, const CefMouseEvent& event,
                               cef_mouse_button_type_t type, bool up, int clickCount) {
  const Qt::MouseButton button = buttonOf(type);
  Qt::MouseButtons held = buttonsOf(event.modifiers);
  held.setFlag(button, !up);
  QEvent::Type kind = QEvent::MouseButtonRelease;
  if (!up) {
    kind = clickCount % 2 == 0 && clickCount > 0 ? QEvent::MouseButtonDblClick
                                                 : QEvent::MouseButtonPress;
  }
  QMouseEvent sent(kind, target.local, target.global, button, held,
                   keyboardModifiersOf(event.modifiers));
  if (up) {
    pressed_ = nullptr;
  } else {
    sent.setTimestamp(timeOfPress(button, target.global.toPoint(), clickCount));
  }
  QApplication::sendEvent(target.widget, &sent);
}

// Qt WebEngine counts clicks itself by the times and positions of presses. The returned time leads
// to the client's click count.
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
  noteInput();
  movedSincePress_ = true;
  const auto target = targetOf(event);
  if (!target) {
    return;
  }
  if (leaves) {
    browser_.cursor().stop();
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
    // The end of the drag released the button; Chromium counts presses and releases.
    QMouseEvent sent(QEvent::MouseButtonRelease, QPointF(-1, -1),
                     target->mapToGlobal(QPointF(-1, -1)), Qt::LeftButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(target, &sent);
  }
}

// The wheel angle that makes Chromium scroll by this distance in pixels.
QPoint OffScreenInput::angleOf(int deltaX, int deltaY) {
  const double factor = 120 / (kPixelsPerLine * QApplication::wheelScrollLines());
  unsentAngle_ += QPointF(deltaX, deltaY) * factor;
  const QPoint angle = unsentAngle_.toPoint();
  unsentAngle_ -= angle;
  return angle;
}

void OffScreenInput::wheel(const CefMouseEvent& event, int deltaX, int deltaY) {
  noteInput();
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
      noteInput();
      heldKey_ = event;
      postFor(&browser_, TID_UI, [this, sequence = ++keySequence_] {
        if (keySequence_ == sequence) {
          sendHeldKey();
        }
      });
      break;
    case KEYEVENT_CHAR:
      if (const auto held = std::exchange(heldKey_, std::nullopt)) {
        sendKey(*held, true, event.character);
      } else {
        sendKey(event, true, event.character);
      }
      break;
    case KEYEVENT_KEYDOWN:
      noteInput();
      sendKey(event, true, event.character);
      break;
    case KEYEVENT_KEYUP:
      noteInput();
      sendKey(event, false, event.character);
      break;
  }
}

void OffScreenInput::sendHeldKey() {
  if (const auto held = std::exchange(heldKey_, std::nullopt)) {
    sendKey(*held, true, 0);
  }
}

void OffScreenInput::sendKey(const CefKeyEvent& event, bool press, char16_t character) {
  QWidget* const target = browser_.page();
  if (!target) {
    return;
  }
  const int key = event.type == KEYEVENT_CHAR ? 0 : qtKeyOf(event.windows_key_code, character);
  const QString text = character == 0 ? QString() : QString(QChar(character));
  const bool isRepeat = (event.modifiers & EVENTFLAG_IS_REPEAT) != 0;
  QKeyEvent sent(press ? QEvent::KeyPress : QEvent::KeyRelease, key,
                 keyboardModifiersOf(event.modifiers), static_cast<quint32>(event.native_key_code),
                 0, nativeModifiersOf(event.modifiers), text, isRepeat);
  QApplication::sendEvent(target, &sent);
}

void OffScreenInput::setFocus(bool focus) {
  QQuickWidget* const target = browser_.page();
  if (!target) {
    return;
  }
  if (focus) {
    latestInput = this;
  }
  // Qt passes the focus on to the page's item only while no other window of the application has it,
  // but the client's view has it.
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
