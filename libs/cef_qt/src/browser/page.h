// The page of a browser.
#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QPointer>
#include <QWebEngineLoadingInfo>
#include <QWebEnginePage>
#include <functional>

#include "browser/js_dialog.h"
#include "include/cef_jsdialog_handler.h"

namespace cef_qt {

class Browser;

// Passes Qt WebEngine's requests and notifications to the client's handlers. Chromium calls the
// virtual methods from its own callbacks, so handlers that may run a nested loop are called from
// tasks. UI thread.
class Page final : public QWebEnginePage {
  Q_OBJECT

 public:
  Page(QWebEngineProfile* profile, Browser* browser, const CefBrowserSettings& settings);

  // Runs `beforeunload`. If the page objects, the user is asked.
  void askToClose();
  // Adds the bridge's script to this page itself; see Profile::isScriptLost.
  void ownScript();

  // The status of the HTTP response that was loaded last; 0 if there was none.
  int httpStatus() const { return httpStatus_; }

  // The number of dialogs that wait inside callbacks of Chromium. The page must not be deleted
  // while there are any.
  int dialogDepth() const { return dialogDepth_; }
  // Refuses these dialogs.
  void endDialogs();
  // Runs `work` from a task once no dialog waits.
  void whenIdle(std::function<void()> work) { onIdle_ = std::move(work); }

 signals:
  void dialogsEnded();

 protected:
  QWebEnginePage* createWindow(WebWindowType type) override;
  bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
  void javaScriptAlert(const QUrl& origin, const QString& text) override;
  bool javaScriptConfirm(const QUrl& origin, const QString& text) override;
  bool javaScriptPrompt(const QUrl& origin, const QString& text, const QString& proposal,
                        QString* input) override;
  void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text, int line,
                                const QString& source) override;

 private:
  // Counts a dialog that waits inside Chromium.
  class DialogScope;

  // Asks the client from a task and runs a nested loop until the result is there.
  JsDialog::Result askClient(cef_jsdialog_type_t type, const QUrl& origin, const QString& text,
                             const QString& proposal);
  void loadingChanged(const QWebEngineLoadingInfo& info);
  void renderProcessEnded(RenderProcessTerminationStatus status, int exitCode);
  // Reloads the page unless its process keeps crashing.
  void recover();

  void askUserToLeave(const QString& text);

  Browser* const browser_;
  const CefBrowserSettings settings_;
  bool askedToClose_ = false;
  int httpStatus_ = 0;
  bool processGone_ = false;  // and no new process was started
  QPointer<QDialog> leaveDialog_;
  QElapsedTimer recovered_;
  int dialogDepth_ = 0;
  std::function<void()> onIdle_;
};

}  // namespace cef_qt
