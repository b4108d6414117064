// The URL scheme through which top documents request their dialogs.
#pragma once

#include <QPointer>
#include <QString>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlSchemeHandler>
#include <vector>

#include "browser/js_dialog.h"

namespace cef_qt {

// The alert, confirm and prompt of a page are synchronous requests to this scheme: the page's
// script blocks and the rest of Chromium does not. (Qt's own dialogs block all pages until they
// close.) UI thread.
class DialogScheme final : public QWebEngineUrlSchemeHandler {
  Q_OBJECT

 public:
  DialogScheme();
  ~DialogScheme() override;

  static QString name() { return QStringLiteral("cef-dialog"); }
  // Called before the QApplication is created.
  static void registerScheme();
  // Null while the framework is not running.
  static DialogScheme* current();

  void requestStarted(QWebEngineUrlRequestJob* job) override;

  // Shows the dialogs that the document requested before it was attached.
  void documentAttached(const QString& document);

 private:
  struct Pending {
    QPointer<QWebEngineUrlRequestJob> job;
    QString document;
    JsDialog::Request request;
  };

  void start(const Pending& dialog);

  std::vector<Pending> unattached_;  // from documents that are not attached yet
};

}  // namespace cef_qt
