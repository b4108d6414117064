// The native end of one page's bridge.
#pragma once

#include <QJsonArray>
#include <QObject>
#include <QString>
#include <QWebChannel>
#include <functional>
#include <optional>
#include <vector>

namespace cef_qt {

// What a document sent.
struct PageEntry {
  enum Kind { kHello = 0, kBye, kQuery, kPersistentQuery, kCancel };

  QString document;  // key of the top document
  int frame;         // 0: the top document; others are counted by it
  Kind kind;
  int id;
  QString name;  // of the query function; of the window in a greeting
  QString text;  // guarded by one character in front
};

// Carries batches between a page's documents and the native side through Qt's web channel: one
// message for all that a script sent, one for all answers of a turn. What arrives is only kept in
// Chromium's callback; the receiver gets it from a task of the render side. Lives on the UI thread.
class PageChannel final : public QObject {
  Q_OBJECT
  Q_PROPERTY(QJsonArray calls READ calls WRITE receive)

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
  // The document's key and, after a semicolon each, frame, id, code and length of every entry;
  // then, after a line feed, the texts. One text, because Qt's web channel takes its time with
  // arrays.
  void deliver(const QString& entries);

 private:
  QJsonArray calls() const { return {}; }
  void receive(const QJsonArray& entries);
  void scheduleProcessing();
  void process();

  const Receiver receiver_;
  QWebChannel channel_;
  bool open_ = false;
  bool processingScheduled_ = false;
  bool flushScheduled_ = false;
  std::vector<QJsonArray> incoming_;
  QString outgoingDocument_;
  QString outgoingHead_;
  QString outgoingTexts_;
};

}  // namespace cef_qt
