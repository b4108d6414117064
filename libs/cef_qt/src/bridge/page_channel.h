// The native end of one page's bridge.
#pragma once

#include <QObject>
#include <QString>
#include <QWebChannel>
#include <functional>
#include <optional>
#include <vector>

namespace cef_qt {

// What a document sent. Its texts are valid while it is received.
struct PageEntry {
  enum Kind { kHello = 0, kBye, kQuery, kPersistentQuery, kCancel };

  QString document;  // key of the top document
  int frame;         // 0: the top document; others are counted by it
  Kind kind;
  int id;
  QStringView name;  // of the query function; of the window in a greeting
  QStringView text;
};

// Carries batches between a page's documents and the native side through Qt's web channel: one
// message for all that a script sent, one for all answers of a turn. What arrives is only kept in
// Chromium's callback; the receiver gets it from a task of the render side. Lives on the UI thread.
class PageChannel final : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString calls READ calls WRITE receive)

 public:
  enum Special { kRun = -1, kNavigate = -2, kFunctions = -3 };
  using Receiver = std::function<void(const PageEntry&)>;

  explicit PageChannel(Receiver receiver);

  static QString objectName() { return QStringLiteral("cef"); }
  static int propertyIndex();
  static int signalIndex();

  QWebChannel* webChannel() { return &channel_; }

  // Until then what arrives is kept.
  void open();

  // Queues an answer (id > 0; no code for success) or a special message for a document.
  void send(const QString& document, int frame, int id, std::optional<int> code, QStringView text);
  // Sends what is queued now.
  void flush();

 signals:
  // The document's key; a JSON array with frame, id, code and length of every entry; a '#'; the
  // texts. One text, because Qt's web channel takes its time with arrays.
  void deliver(const QString& entries);

 private:
  QString calls() const { return {}; }
  // The document's key; after a semicolon each, frame, kind, id, length of the name and of the text
  // of every entry; a '#'; the names and texts.
  void receive(const QString& entries);
  void scheduleProcessing();
  void process();
  void processBatch(const QString& batch);

  const Receiver receiver_;
  QWebChannel channel_;
  bool open_ = false;
  bool processingScheduled_ = false;
  bool flushScheduled_ = false;
  std::vector<QString> incoming_;
  QString outgoingDocument_;
  int outgoingCount_ = 0;
  QString outgoingHead_;
  QString outgoingTexts_;
};

}  // namespace cef_qt
