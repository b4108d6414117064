#include "bridge/page_channel.h"

#include <QMetaMethod>
#include <QPointer>
#include <algorithm>

#include "threads/threads.h"

namespace cef_qt {
namespace {

// Of many answers the page gets the first ones while the others are made.
constexpr int kLargestBatch = 32;

// Takes the part of `rest` before the next `separator` off, and the separator.
QStringView takeUntil(QStringView& rest, QChar separator) {
  const qsizetype end = rest.indexOf(separator);
  const QStringView part = end < 0 ? rest : rest.first(end);
  rest = end < 0 ? QStringView() : rest.sliced(end + 1);
  return part;
}

QStringView takeLength(QStringView& rest, QStringView length) {
  const QStringView part = rest.left(std::max(length.toInt(), 0));
  rest = rest.sliced(part.size());
  return part;
}

PageEntry readEntry(const QString& document, QStringView head, QStringView& texts) {
  PageEntry entry{document, 0, PageEntry::kBye, 0, {}, {}};
  entry.frame = takeUntil(head, u',').toInt();
  entry.kind = static_cast<PageEntry::Kind>(takeUntil(head, u',').toInt());
  entry.id = takeUntil(head, u',').toInt();
  entry.name = takeLength(texts, takeUntil(head, u','));
  entry.text = takeLength(texts, head);
  return entry;
}

}  // namespace

PageChannel::PageChannel(Receiver receiver) : receiver_(std::move(receiver)) {
  channel_.registerObject(objectName(), this);
}

int PageChannel::propertyIndex() {
  return staticMetaObject.indexOfProperty("calls");
}

int PageChannel::signalIndex() {
  return QMetaMethod::fromSignal(&PageChannel::deliver).methodIndex();
}

void PageChannel::open() {
  open_ = true;
  scheduleProcessing();
}

void PageChannel::receive(const QString& entries) {
  incoming_.push_back(entries);
  scheduleProcessing();
}

void PageChannel::scheduleProcessing() {
  if (!open_ || processingScheduled_ || incoming_.empty()) {
    return;
  }
  processingScheduled_ = postTo(TID_RENDERER, [self = QPointer(this)] {
    if (self) {
      self->process();
    }
  });
}

void PageChannel::process() {
  processingScheduled_ = false;
  const QPointer self(this);
  const std::vector<QString> batches = std::exchange(incoming_, {});
  for (const QString& batch : batches) {
    if (self) {
      processBatch(batch);
    }
  }
}

void PageChannel::processBatch(const QString& batch) {
  // The receiver may end the page.
  const QPointer self(this);
  QStringView texts(batch);
  QStringView head = takeUntil(texts, u'#');
  const QString document = takeUntil(head, u';').toString();
  while (!head.isEmpty() && self) {
    const QStringView entry = takeUntil(head, u';');
    receiver_(readEntry(document, entry, texts));
  }
}

void PageChannel::send(const QString& document, int frame, int id, std::optional<int> code,
                       QStringView text) {
  if (document != outgoingDocument_) {
    flush();
    outgoingDocument_ = document;
  }
  outgoingHead_ += outgoingHead_.isEmpty() ? u'[' : u',';
  outgoingHead_ += QString::number(frame) + u',' + QString::number(id) + u',' +
                   (code ? QString::number(*code) : QStringLiteral("null")) + u',' +
                   QString::number(text.size());
  outgoingTexts_ += text;
  if (++outgoingCount_ == kLargestBatch) {
    flush();
    return;
  }
  if (!flushScheduled_) {
    flushScheduled_ = postTo(TID_RENDERER, [self = QPointer(this)] {
      if (self) {
        self->flushScheduled_ = false;
        self->flush();
      }
    });
  }
}

void PageChannel::flush() {
  if (!outgoingHead_.isEmpty()) {
    outgoingCount_ = 0;
    const QString head = std::exchange(outgoingHead_, {});
    const QString texts = std::exchange(outgoingTexts_, {});
    emit deliver(outgoingDocument_ + head + QLatin1String("]#") + texts);
  }
}

}  // namespace cef_qt
