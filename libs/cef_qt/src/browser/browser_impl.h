// A browser with its page, its window and its frames.
#pragma once

#include <QString>
#include <memory>
#include <mutex>

#include "browser/frame_registry.h"
#include "include/cef_browser.h"
#include "include/cef_client.h"

namespace cef_qt {

class BrowserWindow;
class Frame;

// UI thread, except for the methods of CefBrowser, the client and the main frame. References may
// outlive the window; methods have no effect then.
class Browser final : public CefBrowser {
 public:
  struct Options {
    CefRefPtr<CefClient> client;
    CefBrowserSettings settings;
    CefRefPtr<CefDictionaryValue> extraInfo;
    QString title;  // empty: the page's title
    CefRect bounds;
    bool isPopup = false;
    bool isOffScreen = false;
    CefWindowHandle parentWindow = kNullWindowHandle;  // of off-screen browsers
  };

  // Creates the browser with a hidden window and adds it to the BrowserList.
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
  const std::shared_ptr<FrameRegistry>& frames() { return frames_; }

  // Opens the frame registry. Not for use inside Chromium's callbacks.
  void openFrames();
  // Calls OnAfterCreated, then lets the page's queries through.
  void announce();
  // Completes the creation of a browser that a page has opened.
  void startPopup();

  // Asks the page unless forced, then the client (DoClose), then destroys the window.
  void close(bool force);
  // Continues a close to which the page has agreed.
  void pageAgreedToClose();
  // Destroys the window without asking and reports OnBeforeClose last.
  void destroy();

 private:
  explicit Browser(const Options& options);
  ~Browser() override;

  const int id_;
  const bool isPopup_;
  const bool isOffScreen_;
  std::unique_ptr<BrowserWindow> window_;
  std::shared_ptr<FrameRegistry> frames_;
  bool closeQueued_ = false;

  std::mutex mutex_;
  CefRefPtr<CefClient> client_;  // guarded by mutex_
  CefRefPtr<Frame> mainFrame_;   // guarded by mutex_
  IMPLEMENT_REFCOUNTING(Browser);
};

}  // namespace cef_qt
