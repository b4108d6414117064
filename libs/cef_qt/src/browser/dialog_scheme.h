// The way by which top documents ask for their dialogs.
#pragma once

#include <QPointer>
#include <QString>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlSchemeHandler>
#include <vector>

#include "browser/js_dialog.h"

namespace cef_qt {

// The page's alert, confirm and prompt are requests to a scheme of our own that the script waits
// for: the page stands still, and Chromium does not. (Qt's own way holds all of Chromium's work up
// until the dialog ends.) Lives on the UI thread.
class DialogScheme final : public QWebEngineUrlSchemeHandler {
  Q_OBJECT

 public:
  DialogScheme();
  ~DialogScheme() override;

  static QString name() { return QStringLiteral("cef-dialog"); }
  // Before the QApplication is made.
  static void registerScheme();
  // Null when the framework is not running.
  static DialogScheme* current();

  void requestStarted(QWebEngineUrlRequestJob* job) override;

  // A page's document has become known: dialogs that it asked for before can be shown.
  void documentKnown(const QString& document);

 private:
  struct Waiting {
    QPointer<QWebEngineUrlRequestJob> job;
    QString document;
    JsDialog::Question question;
  };

  void start(const Waiting& dialog);

  std::vector<Waiting> unknown_;  // of documents that have not greeted yet
};

}  // namespace cef_qt
