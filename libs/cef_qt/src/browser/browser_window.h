// The window of a browser.
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

// Owns the top-level view and its page. UI thread; not deleted inside a callback of the page or the
// view.
class BrowserWindow {
 public:
  BrowserWindow(Browser* browser, const Browser::Options& options);
  ~BrowserWindow();

  PageChannel* channel() { return &channel_; }
  void openChannel() { channel_.open(); }
  QWebEnginePage* page();
  // What the browser's dialogs open over; null: nothing.
  QWidget* widget();
  // Null for a browser on the screen.
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
  // Runs a script in the main frame, after all answers that were given before.
  void runScript(const QString& script);

  // Runs the page's `beforeunload`; the browser hears when the page, or else the user, agrees.
  void askPageToClose();
  // See Page::keepScript.
  void keepScript();
  // Whether a dialog of the page waits inside a callback of Chromium.
  bool isBusy() const;
  // Ends these dialogs as if refused, then runs `next` from a task.
  void endDialogs(std::function<void()> next);

  // For a page that another one opened: it may stay on its empty first document, which has seen
  // nothing of the bridge.
  void prepareBlankPage();

 private:
  PageChannel channel_;
  std::unique_ptr<View> view_;
  std::unique_ptr<Page> page_;  // deleted before its view
  std::unique_ptr<OffScreenPart> offScreen_;
  const CefWindowHandle parentWindow_;
};

}  // namespace cef_qt
