// A browser's window with its page.
#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "bridge/page_channel.h"
#include "browser/browser_impl.h"

class QWebEnginePage;
class QWidget;

namespace cef_qt {

class OffScreenPart;
class Page;
class View;

// Owns the top-level view, its page and the page's channel. UI thread. Destroyed from tasks only,
// never inside a callback of the page or the view.
class BrowserWindow {
 public:
  BrowserWindow(Browser* browser, const Browser::Options& options);
  ~BrowserWindow();

  PageChannel* channel() { return &channel_; }
  void openChannel() { channel_.open(); }
  QWebEnginePage* page();
  // The parent of the browser's dialogs; may be null.
  QWidget* widget();
  // Null for a browser on screen.
  OffScreenPart* offScreen() { return offScreen_.get(); }

  void show();
  void hide();
  void setFocus(bool focus);
  void setGeometry(const CefRect& bounds);
  CefWindowHandle handle();

  QString url() const;
  void load(const QString& url);
  void reload();
  void stop();
  bool isLoading() const;
  // See Page::httpStatus.
  int httpStatus() const;
  // Runs a script in the main frame, after all responses that were sent before.
  void runScript(const QString& script);

  // Runs the page's `beforeunload`. Browser::pageAgreedToClose follows once the page or the user
  // agrees.
  void askPageToClose();
  // See Page::ownScript.
  void ownScript();
  // Whether a dialog of the page waits inside a callback of Chromium.
  bool isBusy() const;
  // Refuses these dialogs, then runs `next` from a task.
  void endDialogs(std::function<void()> next);

  // Runs the bridge's script in the empty first document of a pop-up, which may stay there.
  void prepareBlankPage();

 private:
  PageChannel channel_;
  std::unique_ptr<View> view_;
  std::unique_ptr<Page> page_;  // deleted before its view
  std::unique_ptr<OffScreenPart> offScreen_;
  const CefWindowHandle parentWindow_;
};

}  // namespace cef_qt
