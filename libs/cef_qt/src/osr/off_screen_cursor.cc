#include "osr/off_screen_cursor.h"

#include <QImage>
#include <QPixmap>
#include <QPointF>
#include <QQuickItem>
#include <QQuickWidget>
#include <QQuickWindow>
#include <utility>

#include "include/cef_display_handler.h"
#include "osr/off_screen_browser.h"

namespace cef_qt {
namespace {

constexpr int kFastIntervalMs = 30;
constexpr int kSlowIntervalMs = 200;
constexpr int kFastChecks = 20;

// The cursor of the item that shows the page; other items have the default cursor.
QCursor cursorBelow(const QQuickItem& item) {
  QCursor cursor = item.cursor();
  for (const QQuickItem* const child : item.childItems()) {
    if (cursor.shape() == Qt::ArrowCursor) {
      cursor = cursorBelow(*child);
    }
  }
  return cursor;
}

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

// The pixels of a picture cursor, as BGRA; null for other cursors.
QImage pictureOf(const QCursor& cursor) {
  return cursor.pixmap().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// The result points into the picture.
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

}  // namespace

OffScreenCursor::OffScreenCursor(OffScreenBrowser& browser) : browser_(browser) {
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { check(); });
}

void OffScreenCursor::watch() {
  fastChecks_ = kFastChecks;
  if (!timer_.isActive() || timer_.interval() != kFastIntervalMs) {
    timer_.start(kFastIntervalMs);
  }
}

void OffScreenCursor::check() {
  if (--fastChecks_ <= 0) {
    timer_.setInterval(kSlowIntervalMs);
  }
  const QQuickWidget* const page = browser_.page();
  const QCursor now = page ? cursorBelow(*page->quickWindow()->contentItem()) : QCursor();
  if (std::exchange(reported_, now) == now) {
    return;
  }
  const CefRefPtr<CefClient> client = browser_.browser()->client();
  if (const auto display = client ? client->GetDisplayHandler() : nullptr) {
    const QImage picture = pictureOf(reported_);
    display->OnCursorChange(browser_.browser(), 0, cursorTypeOf(reported_.shape()),
                            cursorInfoOf(reported_, picture));
  }
}

}  // namespace cef_qt
