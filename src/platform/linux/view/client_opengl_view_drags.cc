// Drags out of the view and into it.
#include <QDrag>
#include <QFontMetrics>
#include <QMimeData>
#include <QMimeDatabase>
#include <QPainter>
#include <QPixmap>
#include <QUrl>
#include <QWidget>

#include "osr/input/drag_out.h"
#include "osr/input/system_event.h"
#include "platform/linux/view/client_opengl_view.h"
#include "platform/linux/view/system_event.h"

namespace client {
namespace {

// The picture is below and right of the pointer, which stays visible.
constexpr QPoint kPointerInPicture(-12, -12);

QString toText(const CefString& text) {
  return QString::fromStdU16String(text.ToString16());
}

// The contents of a file that the data would make, under their type.
void addFileContents(CefDragData& data, QMimeData& mime) {
  const CefRefPtr<BytesWriteHandler> bytes = fileContentsOf(data);
  if (!bytes) {
    return;
  }
  const QString type =
      QMimeDatabase()
          .mimeTypeForFile(toText(data.GetFileName()), QMimeDatabase::MatchExtension)
          .name();
  mime.setData(type, QByteArray(static_cast<const char*>(bytes->data()),
                                static_cast<qsizetype>(bytes->size())));
}

// The text shown at the pointer; without one, Qt shows a dot.
QString shownTextOf(CefDragData& data) {
  const QString text = toText(data.IsLink() ? data.GetLinkTitle() : data.GetFragmentText());
  return text.simplified();
}

QPixmap pictureOf(const QString& text, const QWidget& view) {
  constexpr int kMaxWidth = 240;
  constexpr int kMargin = 4;
  const QFontMetrics metrics(view.font());
  const QString shown = metrics.elidedText(text, Qt::ElideRight, kMaxWidth);
  const QSize size(metrics.horizontalAdvance(shown) + 2 * kMargin, metrics.height() + 2 * kMargin);
  QPixmap picture(size * view.devicePixelRatioF());
  picture.setDevicePixelRatio(view.devicePixelRatioF());
  picture.fill(view.palette().color(QPalette::ToolTipBase));
  QPainter painter(&picture);
  painter.setPen(view.palette().color(QPalette::ToolTipText));
  painter.drawText(QRect(QPoint(), size), Qt::AlignCenter, shown);
  return picture;
}

// Runs the system's drag in a nested event loop and returns its result.
Qt::DropAction dragOut(QWidget* view, CefDragData& data, Qt::DropActions allowed) {
  const DragKinds kinds = kindsOf(data);
  auto* const mime = new QMimeData;
  if (kinds.link) {
    mime->setUrls({QUrl(toText(data.GetLinkURL()))});
  }
  if (kinds.text) {
    mime->setText(toText(data.GetFragmentText()));
  }
  if (!data.GetFragmentHtml().empty()) {
    mime->setHtml(toText(data.GetFragmentHtml()));
  }
  if (kinds.fileContents) {
    addFileContents(data, *mime);
  }
  auto* const drag = new QDrag(view);  // deletes itself and what it carries
  drag->setMimeData(mime);
  if (const QString text = shownTextOf(data); !text.isEmpty()) {
    drag->setPixmap(pictureOf(text, *view));
    drag->setHotSpot(kPointerInPicture);
  }
  return drag->exec(allowed);
}

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
  // Deferred to the event loop, because the drag runs a nested one.
  QMetaObject::invokeMethod(this, &ClientOpenGLView::runDrag, Qt::QueuedConnection);
  return true;
}

void ClientOpenGLView::runDrag() {
  const CefRefPtr<CefDragData> dragged = drags_.currentDragData();
  if (!dragged) {
    return;
  }
  const std::shared_ptr<ClientOpenGLView> self = self_;  // the browser may close in the drag's loop
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
  // Rejecting would end the moves too, but a page may accept the drag only in places.
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
