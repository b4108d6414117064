// A browser: a page in a window of its own.
#pragma once

#include <QString>
#include <memory>
#include <mutex>

#include "browser/documents.h"
#include "include/cef_browser.h"
#include "include/cef_client.h"

namespace cef_qt {

class BrowserWindow;
class Frame;

// Everything but reading the identity happens on the UI thread. The object outlives its window for
// as long as someone holds it; its operations then do nothing.
class Browser final : public CefBrowser {
 public:
  struct Options {
    CefRefPtr<CefClient> client;
    CefBrowserSettings settings;
    CefRefPtr<CefDictionaryValue> extraInfo;
    QString title;  // empty: the page's
    CefRect bounds;
    bool isPopup = false;
    bool isOffScreen = false;
    CefWindowHandle parentWindow = kNullWindowHandle;  // of off-screen browsers
  };

  // Makes the browser and its hidden window and lists it with the framework.
  static CefRefPtr<Browser> create(const Options& options);

  CefRefPtr<CefBrowserHost> GetHost() override;
  int GetIdentifier() override { return id_; }
  bool IsSame(CefRefPtr<CefBrowser> that) override;
  bool IsPopup() override { return isPopup_; }
  bool IsValid() override;
  bool IsLoading() override;
  void Reload() override;
  void StopLoad() override;
  CefRefPtr<CefFrame> GetMainFrame() override;
  CefRefPtr<CefFrame> GetFocusedFrame() override { return GetMainFrame(); }

  // Null once closed.
  CefRefPtr<CefClient> client();
  // Null once closed.
  BrowserWindow* window() { return window_.get(); }
  CefRefPtr<Frame> mainFrame();
  Documents* documents() { return documents_.get(); }

  // Begins the render side's work for the page. Not inside Chromium's callbacks.
  void startDocuments();
  // Tells the client of the new browser, then lets its queries through.
  void announce();
  // What follows when a page has opened this browser.
  void startPopup();

  // Closing: asks the page unless forced, then the client, then ends the window.
  void close(bool force);
  // The page agreed, or was not asked.
  void pageAgreedToClose();
  // Ends the window without asking anyone; the client hears of it.
  void destroy();

 private:
  explicit Browser(const Options& options);
  ~Browser() override;

  const int id_;
  const bool isPopup_;
  const bool isOffScreen_;
  std::unique_ptr<BrowserWindow> window_;
  std::unique_ptr<Documents> documents_;
  bool closeQueued_ = false;

  std::mutex mutex_;
  CefRefPtr<CefClient> client_;  // guarded by mutex_
  CefRefPtr<Frame> mainFrame_;   // guarded by mutex_
  IMPLEMENT_REFCOUNTING(Browser);
};

}  // namespace cef_qt
