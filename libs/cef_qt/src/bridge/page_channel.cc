#include "bridge/page_channel.h"

#include <QMetaMethod>
#include <algorithm>
#include <utility>

#include "threads/post_for.h"

namespace cef_qt {
namespace {

// With many responses under way, the page handles the first ones while the others are produced.
constexpr int kMaxBatchSize = 32;

// Removes the part of `rest` before the next separator, and the separator. Returns the part.
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
  PageEntry entry{document, 0, PageEntry::kDetach, 0, {}, {}};
  entry.frame = takeUntil(head, u',').toInt();
  entry.kind = static_cast<PageEntry::Kind>(takeUntil(head, u',').toInt());
  entry.id = takeUntil(head, u',').toInt();
  entry.name = takeLength(texts, takeUntil(head, u','));
  entry.text = takeLength(texts, head);
  return entry;
}

void receiveAll(const QString& message, PageReceiver& receiver) {
  QStringView texts(message);
  QStringView head = takeUntil(texts, u'#');
  const QString document = takeUntil(head, u';').toString();
  while (!head.isEmpty()) {
    const QStringView entry = takeUntil(head, u';');
    receiver.receive(readEntry(document, entry, texts));
  }
}

}  // namespace

PageChannel::PageChannel(std::shared_ptr<PageReceiver> receiver) : receiver_(std::move(receiver)) {
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
  processingScheduled_ = postFor(this, TID_RENDERER, [this] { process(); });
}

void PageChannel::process() {
  processingScheduled_ = false;
  // A nested loop in the application's handler may close the page and with it this channel. The
  // receiver ignores the entries of a closed page.
  const std::shared_ptr<PageReceiver> receiver = receiver_;
  const std::vector<QString> messages = std::exchange(incoming_, {});
  for (const QString& message : messages) {
    receiveAll(message, *receiver);
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
  if (++outgoingCount_ == kMaxBatchSize) {
    flush();
    return;
  }
  if (!flushScheduled_) {
    flushScheduled_ = postFor(this, TID_RENDERER, [this] {
      flushScheduled_ = false;
      flush();
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
