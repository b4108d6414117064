// The URL scheme by which documents show their origins.
#pragma once

#include <QString>
#include <QUrl>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlSchemeHandler>
#include <deque>
#include <optional>

#include "include/internal/cef_string.h"

namespace cef_qt {

// Qt does not tell from which document a message comes, and a page could say anything of itself.
// Only of a request does the browser know which origin it was made by. So every document makes one:
// a POST to this scheme whose path is the document's proof, "top/" or "frame/" and a key that it
// made up. By the same key it attaches, and gets the origin of the request.
//
// A page that knows the key of a document could take its place, but keys are secret: a top document
// keeps its own, and a document in a frame tells its own to the top document only, which passes on
// the frame's messages anyway. A page cannot have one of another origin make the request by giving
// it the URL of an image or a link, because these send no POST. UI thread.
class OriginScheme final : public QWebEngineUrlSchemeHandler {
  Q_OBJECT

 public:
  OriginScheme();
  ~OriginScheme() override;

  static QString name() { return QStringLiteral("cef-origin"); }
  // Called before the QApplication is created.
  static void registerScheme();
  // Takes the origin of the request with this proof: invalid for an opaque one, nullopt before the
  // request has arrived.
  static std::optional<QUrl> take(const QString& proof);

  void requestStarted(QWebEngineUrlRequestJob* job) override;

 private:
  struct Waiting {
    QString proof;
    QUrl origin;
  };

  std::deque<Waiting> waiting_;  // of documents that are not attached yet, the oldest first
};

// The URL that can be relied on of a document that says its URL: its own if that is of the origin,
// or an about: URL, which says nothing of an origin. Otherwise the origin; empty for an opaque or
// unknown one.
CefString reliableUrl(const QString& said, const QUrl& origin);

}  // namespace cef_qt
