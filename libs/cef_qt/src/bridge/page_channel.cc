#include "bridge/page_channel.h"

#include <QMetaMethod>
#include <QPointer>

#include "threads/threads.h"

namespace cef_qt {
namespace {

constexpr qsizetype kEntryLength = 5;

PageEntry readEntry(const QString& document, const QJsonArray& batch, qsizetype at) {
  return {document,
          batch[at].toInt(),
          static_cast<PageEntry::Kind>(batch[at + 1].toInt(-1)),
          batch[at + 2].toInt(),
          batch[at + 3].toString(),
          batch[at + 4].toString()};
}

QString guarded(QStringView text) {
  QString out;
  out.reserve(text.size() + 1);
  out += u'.';
  out += text;
  return out;
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

void PageChannel::receive(const QJsonArray& entries) {
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
  // The receiver may end the page.
  const QPointer self(this);
  const std::vector<QJsonArray> batches = std::exchange(incoming_, {});
  for (const QJsonArray& batch : batches) {
    const QString document = batch.first().toString();
    for (qsizetype at = 1; at + kEntryLength <= batch.size() && self; at += kEntryLength) {
      receiver_(readEntry(document, batch, at));
    }
  }
}

void PageChannel::send(const QString& document, int frame, int id, const QJsonValue& code,
                       QStringView text) {
  if (document != outgoingDocument_) {
    flush();
    outgoingDocument_ = document;
  }
  if (outgoing_.isEmpty()) {
    outgoing_.append(document);
  }
  outgoing_.append(frame);
  outgoing_.append(id);
  outgoing_.append(code);
  outgoing_.append(guarded(text));
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
  if (!outgoing_.isEmpty()) {
    const QJsonArray entries = std::exchange(outgoing_, {});
    emit deliver(entries);
  }
}

}  // namespace cef_qt
