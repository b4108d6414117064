#include "platform/linux/drag_linux.h"

#include <QDrag>
#include <QMimeData>
#include <QMimeDatabase>
#include <QUrl>
#include <QWidget>

#include "osr/drag_contents.h"

namespace client {
namespace {

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
  return drag->exec(allowed);
}

}  // namespace client
