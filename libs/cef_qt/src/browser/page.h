// The page of a browser.
#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QPointer>
#include <QWebEnginePage>
#include <functional>

#include "browser/js_dialog.h"
#include "include/cef_jsdialog_handler.h"

namespace cef_qt {

class Browser;

// Turns what Qt WebEngine asks and tells into the client's handlers. Virtual operations are called
// inside Chromium, so handlers that may take their time are called from tasks.
class Page final : public QWebEnginePage {
  Q_OBJECT

 public:
  Page(QWebEngineProfile* profile, Browser* browser, const CefBrowserSettings& settings);

  // Runs `beforeunload`. Should the page want to stay, the user is asked.
  void askToClose();
  // Gives this page the bridge's script itself, when its process has lost that of the profile.
  void keepScript();

  // Dialogs that wait inside Chromium's callbacks; the page must not be deleted meanwhile.
  int dialogDepth() const { return dialogDepth_; }
  // Ends these dialogs as if refused.
  void endDialogs();
  // Runs `work` from a task once no dialog waits any more.
  void whenIdle(std::function<void()> work) { onIdle_ = std::move(work); }

 signals:
  void dialogsEnded();

 protected:
  QWebEnginePage* createWindow(WebWindowType type) override;
  bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
  void javaScriptAlert(const QUrl& origin, const QString& text) override;
  bool javaScriptConfirm(const QUrl& origin, const QString& text) override;
  bool javaScriptPrompt(const QUrl& origin, const QString& text, const QString& proposal,
                        QString* answer) override;
  void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text, int line,
                                const QString& source) override;

 private:
  // Counts the dialogs that wait inside Chromium.
  class Waiting;

  // Asks the client from a task and waits for its answer.
  JsDialog::Answer askClient(cef_jsdialog_type_t type, const QUrl& origin, const QString& text,
                             const QString& proposal);
  void renderProcessEnded(RenderProcessTerminationStatus status, int exitCode);
  void loadAgain();

  void askUserToLeave(const QString& text);

  Browser* const browser_;
  const CefBrowserSettings settings_;
  bool askedToClose_ = false;
  bool processGone_ = false;  // and no new one was begun
  QPointer<QDialog> leaveQuestion_;
  QElapsedTimer loadedAgain_;
  int dialogDepth_ = 0;
  std::function<void()> onIdle_;
};

}  // namespace cef_qt
