#include "browser/drag_conversion.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include "base/drag_data_impl.h"
#include "base/qt_text.h"

namespace cef_qt {

CefRefPtr<CefDragData> dragDataOf(const QMimeData& mime) {
  DragContents contents;
  for (const QUrl& url : mime.urls()) {
    if (url.isLocalFile()) {
      const QString path = url.toLocalFile();
      contents.files.push_back({fromQt(path), fromQt(QFileInfo(path).fileName())});
    } else if (contents.linkUrl.empty()) {
      contents.linkUrl = fromQt(url.toString(QUrl::FullyEncoded));
      contents.linkTitle = mime.hasText() ? fromQt(mime.text()) : contents.linkUrl;
    }
  }
  // Qt also gives the URLs of dragged files as text.
  if (contents.files.empty() && contents.linkUrl.empty()) {
    contents.fragmentText = fromQt(mime.text());
    contents.fragmentHtml = fromQt(mime.html());
  }
  return new DragData(std::move(contents), true);
}

CefRefPtr<CefDragData> pageDragDataOf(const QMimeData& mime) {
  DragContents contents;
  for (const QUrl& url : mime.urls()) {
    if (!url.isLocalFile()) {
      contents.linkUrl = fromQt(url.toString(QUrl::FullyEncoded));
    } else if (QFile file(url.toLocalFile()); file.open(QIODevice::ReadOnly)) {
      contents.contentsName = fromQt(QFileInfo(file).fileName());
      contents.contents = file.readAll().toStdString();
    }
  }
  // Without a format of its own, Qt gives the URLs as text.
  if (mime.hasFormat(QStringLiteral("text/plain"))) {
    contents.fragmentText = fromQt(mime.text());
  }
  contents.fragmentHtml = fromQt(mime.html());
  contents.linkTitle = contents.fragmentText.empty() ? contents.linkUrl : contents.fragmentText;
  return new DragData(std::move(contents), true);
}

cef_drag_operations_mask_t operationsOf(Qt::DropActions actions) {
  unsigned int operations = DRAG_OPERATION_NONE;
  operations |= actions & Qt::CopyAction ? DRAG_OPERATION_COPY : DRAG_OPERATION_NONE;
  operations |= actions & Qt::LinkAction ? DRAG_OPERATION_LINK : DRAG_OPERATION_NONE;
  operations |= actions & Qt::MoveAction ? DRAG_OPERATION_MOVE : DRAG_OPERATION_NONE;
  return static_cast<cef_drag_operations_mask_t>(operations);
}

}  // namespace cef_qt
