// The native end of one page's bridge.
#pragma once

#include <QObject>
#include <QString>
#include <QWebChannel>
#include <memory>
#include <optional>
#include <vector>

namespace cef_qt {

// One entry of a message from a page. The texts are valid only while it is received. kAsked follows
// when the request by which the document shows its origin has ended.
struct PageEntry {
  enum Kind { kAttach = 0, kDetach, kQuery, kPersistentQuery, kCancel, kAsked };

  QString document;  // key of the top document
  int frame;         // 0 for the top document, which numbers its frames
  Kind kind;
  int id;            // of the query; in kAttach the version of the script
  QStringView name;  // of the query function; in kAttach of the window
  // The request. In kAttach, with a blank between them: the document's key, the origins of the
  // documents between it and the top one (the nearest first, separated by commas), and its URL.
  QStringView text;
};

// TID_RENDERER.
class PageReceiver {
 public:
  virtual void receive(const PageEntry& entry) = 0;

 protected:
  ~PageReceiver() = default;
};

// Carries messages between a page's documents and the native side through Qt's web channel: all
// entries that a script sends are one message, and so are all responses of a batch of tasks.
// Messages arrive inside Chromium's callbacks, where they are only queued; a task of the render
// side hands them to the receiver. Owned by the browser's window. UI thread.
class PageChannel final : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString calls READ calls WRITE receive)

 public:
  enum Command { kRun = -1, kNavigate = -2, kFunctions = -3 };

  explicit PageChannel(std::shared_ptr<PageReceiver> receiver);

  static QString objectName() { return QStringLiteral("cef"); }
  static int propertyIndex();
  static int signalIndex();

  QWebChannel* webChannel() { return &channel_; }

  // Starts to hand messages to the receiver; earlier ones are queued.
  void open();

  // Queues a response (id > 0, no code for a success) or a command (id < 0) for a document.
  void send(const QString& document, int frame, int id, std::optional<int> code, QStringView text);
  // Sends the queued entries.
  void flush();

 signals:
  // The document's key; a JSON array with the frame, id, code and length of every entry; a '#'; the
  // texts. A single string, because Qt's web channel is slow with arrays.
  void deliver(const QString& entries);

 private:
  QString calls() const { return {}; }
  // The document's key; for every entry a semicolon and its frame, kind, id, length of the name and
  // length of the text; a '#'; the names and texts.
  void receive(const QString& entries);
  void scheduleProcessing();
  void process();

  const std::shared_ptr<PageReceiver> receiver_;
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
