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

void PageChannel::send(const QString& document, int frame, int id, std::optional<int> code,
                       QStringView text) {
  if (document != outgoingDocument_) {
    flush();
    outgoingDocument_ = document;
  }
  outgoingHead_ += u';' + QString::number(frame) + u',' + QString::number(id) + u',';
  if (code) {
    outgoingHead_ += QString::number(*code);
  }
  outgoingHead_ += u',' + QString::number(text.size());
  outgoingTexts_ += text;
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
    const QString head = std::exchange(outgoingHead_, {});
    const QString texts = std::exchange(outgoingTexts_, {});
    emit deliver(outgoingDocument_ + head + u'\n' + texts);
  }
}

}  // namespace cef_qt
