#include "platform/linux/view/cursor.h"

#include <QPixmap>

namespace client {
namespace {

Qt::CursorShape shapeOf(cef_cursor_type_t type) {
  switch (type) {
    case CT_CROSS:
      return Qt::CrossCursor;
    case CT_HAND:
      return Qt::PointingHandCursor;
    case CT_IBEAM:
      return Qt::IBeamCursor;
    case CT_WAIT:
      return Qt::WaitCursor;
    case CT_PROGRESS:
      return Qt::BusyCursor;
    case CT_HELP:
      return Qt::WhatsThisCursor;
    case CT_NORTHRESIZE:
    case CT_SOUTHRESIZE:
    case CT_NORTHSOUTHRESIZE:
      return Qt::SizeVerCursor;
    case CT_EASTRESIZE:
    case CT_WESTRESIZE:
    case CT_EASTWESTRESIZE:
      return Qt::SizeHorCursor;
    case CT_NORTHEASTRESIZE:
    case CT_SOUTHWESTRESIZE:
    case CT_NORTHEASTSOUTHWESTRESIZE:
      return Qt::SizeBDiagCursor;
    case CT_NORTHWESTRESIZE:
    case CT_SOUTHEASTRESIZE:
    case CT_NORTHWESTSOUTHEASTRESIZE:
      return Qt::SizeFDiagCursor;
    case CT_COLUMNRESIZE:
      return Qt::SplitHCursor;
    case CT_ROWRESIZE:
      return Qt::SplitVCursor;
    case CT_MOVE:
      return Qt::SizeAllCursor;
    case CT_NONE:
      return Qt::BlankCursor;
    case CT_NODROP:
    case CT_NOTALLOWED:
      return Qt::ForbiddenCursor;
    case CT_GRAB:
      return Qt::OpenHandCursor;
    case CT_GRABBING:
      return Qt::ClosedHandCursor;
    case CT_COPY:
      return Qt::DragCopyCursor;
    case CT_ALIAS:
      return Qt::DragLinkCursor;
    default:
      return Qt::ArrowCursor;
  }
}

QCursor pictureCursor(const CefCursorInfo& info) {
  const QImage borrowed(static_cast<const uchar*>(info.buffer), info.size.width, info.size.height,
                        QImage::Format_ARGB32_Premultiplied);
  QPixmap picture = QPixmap::fromImage(borrowed.copy());
  const qreal scale = info.image_scale_factor > 0 ? info.image_scale_factor : 1;
  picture.setDevicePixelRatio(scale);
  return QCursor(picture, qRound(info.hotspot.x / scale), qRound(info.hotspot.y / scale));
}

}  // namespace

QCursor toCursor(cef_cursor_type_t type, const CefCursorInfo& custom) {
  if (type == CT_CUSTOM && custom.buffer) {
    return pictureCursor(custom);
  }
  return shapeOf(type);
}

}  // namespace client
