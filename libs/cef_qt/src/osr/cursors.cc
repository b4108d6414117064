#include "osr/cursors.h"

#include <QPixmap>
#include <QPointF>

namespace cef_qt {

cef_cursor_type_t cursorTypeOf(Qt::CursorShape shape) {
  switch (shape) {
    case Qt::CrossCursor:
      return CT_CROSS;
    case Qt::PointingHandCursor:
      return CT_HAND;
    case Qt::IBeamCursor:
      return CT_IBEAM;
    case Qt::WaitCursor:
      return CT_WAIT;
    case Qt::BusyCursor:
      return CT_PROGRESS;
    case Qt::WhatsThisCursor:
      return CT_HELP;
    case Qt::SizeVerCursor:
      return CT_NORTHSOUTHRESIZE;
    case Qt::SizeHorCursor:
      return CT_EASTWESTRESIZE;
    case Qt::SizeBDiagCursor:
      return CT_NORTHEASTSOUTHWESTRESIZE;
    case Qt::SizeFDiagCursor:
      return CT_NORTHWESTSOUTHEASTRESIZE;
    case Qt::SplitHCursor:
      return CT_COLUMNRESIZE;
    case Qt::SplitVCursor:
      return CT_ROWRESIZE;
    case Qt::SizeAllCursor:
      return CT_MOVE;
    case Qt::BlankCursor:
      return CT_NONE;
    case Qt::ForbiddenCursor:
      return CT_NOTALLOWED;
    case Qt::OpenHandCursor:
      return CT_GRAB;
    case Qt::ClosedHandCursor:
      return CT_GRABBING;
    case Qt::DragCopyCursor:
      return CT_COPY;
    case Qt::DragLinkCursor:
      return CT_ALIAS;
    case Qt::BitmapCursor:
    case Qt::CustomCursor:
      return CT_CUSTOM;
    default:
      return CT_POINTER;
  }
}

QImage pictureOf(const QCursor& cursor) {
  return cursor.pixmap().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

CefCursorInfo cursorInfoOf(const QCursor& cursor, const QImage& picture) {
  CefCursorInfo info;
  if (!picture.isNull()) {
    const QPointF hotspot = QPointF(cursor.hotSpot()) * picture.devicePixelRatio();
    info.hotspot = {qRound(hotspot.x()), qRound(hotspot.y())};
    info.image_scale_factor = static_cast<float>(picture.devicePixelRatio());
    info.buffer = picture.constBits();
    info.size = {picture.width(), picture.height()};
  }
  return info;
}

}  // namespace cef_qt
