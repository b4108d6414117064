#include "platform/linux/view/drag.h"

#include <QDrag>
#include <QFontMetrics>
#include <QMimeData>
#include <QMimeDatabase>
#include <QPainter>
#include <QPixmap>
#include <QUrl>
#include <QWidget>

#include "osr/input/drag_contents.h"

namespace client {
namespace {

// Up and left of it, so that the pointer and what is below it can be seen.
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

// What goes with the pointer; Qt shows a dot else.
QString shownTextOf(CefDragData& data) {
  const QString text = toText(data.IsLink() ? data.GetLinkTitle() : data.GetFragmentText());
  return text.simplified();
}

QPixmap pictureOf(const QString& text, const QWidget& view) {
  constexpr int kMostWidth = 240;
  constexpr int kMargin = 4;
  const QFontMetrics metrics(view.font());
  const QString shown = metrics.elidedText(text, Qt::ElideRight, kMostWidth);
  const QSize size(metrics.horizontalAdvance(shown) + 2 * kMargin, metrics.height() + 2 * kMargin);
  QPixmap picture(size * view.devicePixelRatioF());
  picture.setDevicePixelRatio(view.devicePixelRatioF());
  picture.fill(view.palette().color(QPalette::ToolTipBase));
  QPainter painter(&picture);
  painter.setPen(view.palette().color(QPalette::ToolTipText));
  painter.drawText(QRect(QPoint(), size), Qt::AlignCenter, shown);
  return picture;
}

}  // namespace

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

}  // namespace client
