// The view as source and target of drags.
#include "osr/input/event_flags.h"
#include "platform/linux/view/client_opengl_view.h"
#include "platform/linux/view/drag.h"
#include "platform/linux/view/system_event.h"

namespace client {
namespace {

CefMouseEvent recordOf(const QDropEvent& event) {
  SystemEvent shared;
  shared.modifiers = toSystemModifiers(event.modifiers());
  return mouseEventAt({event.position().x(), event.position().y()}, getModifiersForEvent(shared));
}

}  // namespace

bool ClientOpenGLView::startDragging(CefRefPtr<CefBrowser> /*browser*/,
                                     CefRefPtr<CefDragData> dragged,
                                     cef_drag_operations_mask_t allowed, int /*x*/, int /*y*/) {
  drags_.begin(dragged, allowed);
  // From the loop: the drag runs a loop of its own until it ends.
  QMetaObject::invokeMethod(this, &ClientOpenGLView::runDrag, Qt::QueuedConnection);
  return true;
}

void ClientOpenGLView::runDrag() {
  const CefRefPtr<CefDragData> dragged = drags_.currentDragData();
  if (!dragged) {
    return;
  }
  const std::shared_ptr<ClientOpenGLView> alive = self_;
  const Qt::DropAction action = dragOut(this, *dragged, toDropActions(drags_.currentAllowedOps()));
  const QPointF end = mapFromGlobal(QPointF(QCursor::pos()));
  drags_.endedAt({end.x(), end.y()}, toDragOperations(action));
}

void ClientOpenGLView::setCurrentDragOperation(cef_drag_operations_mask_t operation) {
  drags_.setCurrentDragOp(operation);
}

void ClientOpenGLView::dragEnterEvent(QDragEnterEvent* event) {
  drags_.entered(recordOf(*event), toDroppedItems(*event->mimeData()),
                 toDragOperations(event->possibleActions()));
  // Refusing would end the moves too, and a page may want the drag only at some places.
  event->acceptProposedAction();
}

void ClientOpenGLView::dragMoveEvent(QDragMoveEvent* event) {
  const cef_drag_operations_mask_t operation =
      drags_.moved(recordOf(*event), toDragOperations(event->possibleActions()));
  event->setDropAction(toDropAction(operation));
  event->setAccepted(operation != DRAG_OPERATION_NONE);
}

void ClientOpenGLView::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
  drags_.exited();
}

void ClientOpenGLView::dropEvent(QDropEvent* event) {
  event->setDropAction(toDropAction(drags_.currentDragOp()));
  event->setAccepted(drags_.performed(recordOf(*event)));
}

}  // namespace client
