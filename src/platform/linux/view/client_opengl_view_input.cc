// Pointer, key and input method events of the view.
#include <QApplication>
#include <QInputMethod>

#include "platform/linux/view/client_opengl_view.h"
#include "platform/linux/view/cursor.h"
#include "platform/linux/view/input_method.h"
#include "platform/linux/view/system_event.h"

namespace client {
namespace {

// The page gets no other buttons; as in an ordinary browser window, two of them navigate.
bool isOfPage(Qt::MouseButton button) {
  return button == Qt::LeftButton || button == Qt::RightButton || button == Qt::MiddleButton;
}

void navigate(const CefRefPtr<CefBrowser>& browser, Qt::MouseButton button) {
  const CefRefPtr<CefFrame> frame = browser ? browser->GetMainFrame() : nullptr;
  if (frame && button == Qt::BackButton) {
    frame->ExecuteJavaScript("history.back()", CefString(), 0);
  } else if (frame && button == Qt::ForwardButton) {
    frame->ExecuteJavaScript("history.forward()", CefString(), 0);
  }
}

}  // namespace

bool ClientOpenGLView::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    event->accept();  // keys are the page's
    return true;
  }
  return QWidget::event(event);
}

bool ClientOpenGLView::eventFilter(QObject* watched, QEvent* event) {
  // The view gets its own events directly.
  if (event->type() == QEvent::Wheel && watched->isWidgetType() && watched != this) {
    const auto& wheel = *static_cast<QWheelEvent*>(event);
    SystemEvent shared = toSystemEvent(wheel);
    const QPointF here = mapFromGlobal(wheel.globalPosition());  // it may be another widget's event
    shared.point = {here.x(), here.y()};
    scroll_.shortCircuit(shared);
  }
  return QWidget::eventFilter(watched, event);
}

bool ClientOpenGLView::focusNextPrevChild(bool /*next*/) {
  return false;  // Tab is the page's
}

void ClientOpenGLView::handleMouse(const QMouseEvent& event, int clickCount) {
  mouse_.handle(toSystemEvent(event, clickCount));
}

void ClientOpenGLView::mousePressEvent(QMouseEvent* event) {
  if (!isOfPage(event->button())) {
    navigate(browser(), event->button());
    return;
  }
  finishComposition();
  clicks_.pressed({static_cast<int>(event->button()),
                   {event->position().x(), event->position().y()},
                   static_cast<int64_t>(event->timestamp())});
  handleMouse(*event, clicks_.count());
}

// Qt reports every second press as a double click.
void ClientOpenGLView::mouseDoubleClickEvent(QMouseEvent* event) {
  mousePressEvent(event);
}

void ClientOpenGLView::mouseReleaseEvent(QMouseEvent* event) {
  if (isOfPage(event->button())) {
    handleMouse(*event, clicks_.count());
  }
}

void ClientOpenGLView::mouseMoveEvent(QMouseEvent* event) {
  handleMouse(*event, 0);
}

void ClientOpenGLView::enterEvent(QEnterEvent* event) {
  handleCrossing(EventKind::kEntered, event->position());
}

void ClientOpenGLView::leaveEvent(QEvent* /*event*/) {
  handleCrossing(EventKind::kExited, mapFromGlobal(QPointF(QCursor::pos())));
}

void ClientOpenGLView::handleCrossing(EventKind kind, const QPointF& point) {
  SystemEvent shared;
  shared.kind = kind;
  shared.modifiers = toSystemModifiers(QGuiApplication::keyboardModifiers());
  shared.point = {point.x(), point.y()};
  mouse_.handle(shared);
}

void ClientOpenGLView::wheelEvent(QWheelEvent* event) {
  scroll_.scrollWheel(toSystemEvent(*event));
  event->accept();
}

void ClientOpenGLView::keyPressEvent(QKeyEvent* event) {
  if (const std::optional<EditCommand> command = editCommandOf(*event)) {
    runEditCommand(*this, *command);
  } else {
    keys_.sendKeyDown(toSystemEvent(*event));
  }
}

void ClientOpenGLView::keyReleaseEvent(QKeyEvent* event) {
  if (!event->isAutoRepeat()) {
    keys_.sendKeyUp(toSystemEvent(*event));
  }
}

void ClientOpenGLView::inputMethodEvent(QInputMethodEvent* event) {
  applyInputMethodEvent(text_, *event);
  event->accept();
}

QVariant ClientOpenGLView::inputMethodQuery(Qt::InputMethodQuery query) const {
  const QVariant reply = inputMethodReply(text_, query);
  return reply.isValid() ? reply : QWidget::inputMethodQuery(query);
}

void ClientOpenGLView::textInputChanged() {
  setInputMethodHints(inputMethodHintsOf(text_.mode()));
  setAttribute(Qt::WA_InputMethodEnabled, text_.acceptsText());
  updateMicroFocus();
}

void ClientOpenGLView::setCursor(CefCursorHandle /*cursor*/, cef_cursor_type_t type,
                                 const CefCursorInfo& custom) {
  QWidget::setCursor(toCursor(type, custom));
}

void ClientOpenGLView::focusInEvent(QFocusEvent* /*event*/) {
  setFocusOfBrowser(true);
}

void ClientOpenGLView::focusOutEvent(QFocusEvent* event) {
  // A menu takes the keyboard, but the page keeps its selection.
  if (event->reason() != Qt::PopupFocusReason) {
    finishComposition();
    setFocusOfBrowser(false);
  }
}

// Keeps the composed text in its field before the page's focus can change.
void ClientOpenGLView::finishComposition() {
  if (text_.isComposing()) {
    QGuiApplication::inputMethod()->commit();
    text_.finish();  // when the input method had nothing to commit
  }
}

void ClientOpenGLView::setFocusOfBrowser(bool focus) {
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->SetFocus(focus);
  }
}

}  // namespace client
