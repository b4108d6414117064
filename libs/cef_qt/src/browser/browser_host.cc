#include "browser/browser_host.h"

#include <cstdio>
#include <utility>

#include "base/qt_text.h"
#include "browser/browser_window.h"
#include "browser/off_screen.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

class NavigationEntry final : public CefNavigationEntry {
 public:
  NavigationEntry(CefString url, int status) : url_(std::move(url)), status_(status) {}

  bool IsValid() override { return true; }
  CefString GetURL() override { return url_; }
  int GetHttpStatusCode() override { return status_; }

 private:
  const CefString url_;
  const int status_;
  IMPLEMENT_REFCOUNTING(NavigationEntry);
};

}  // namespace

void BrowserHost::CloseBrowser(bool force_close) {
  postTo(TID_UI, [browser = browser_, force_close] { browser->close(force_close); });
}

CefWindowHandle BrowserHost::GetWindowHandle() {
  return browser_->window() ? browser_->window()->handle() : kNullWindowHandle;
}

void BrowserHost::SetFocus(bool focus) {
  postTo(TID_UI, [browser = browser_, focus] {
    if (browser->window()) {
      browser->window()->setFocus(focus);
    }
  });
}

CefRefPtr<CefNavigationEntry> BrowserHost::GetVisibleNavigationEntry() {
  const BrowserWindow* const window = browser_->window();
  return window ? new NavigationEntry(fromQt(window->url()), window->httpStatus()) : nullptr;
}

}  // namespace cef_qt

bool CefBrowserHost::CreateBrowser(const CefWindowInfo& window_info, CefRefPtr<CefClient> client,
                                   const CefString& url, const CefBrowserSettings& settings,
                                   CefRefPtr<CefDictionaryValue> extra_info,
                                   CefRefPtr<CefRequestContext> /*request_context*/) {
  if (!client) {
    return false;
  }
  cef_qt::Browser::Options options;
  options.client = std::move(client);
  options.settings = settings;
  options.extraInfo = std::move(extra_info);
  options.title = cef_qt::toQt(CefString(&window_info.window_name));
  options.bounds = window_info.bounds;
  options.isOffScreen = window_info.windowless_rendering_enabled != 0;
  options.parentWindow = window_info.parent_window;
  if (options.isOffScreen && !cef_qt::offScreenFactory()) {
    std::fprintf(stderr,
                 "Off-screen browsers need windowless_rendering_enabled in the settings.\n");
    return false;
  }
  return cef_qt::postTo(TID_UI, [options, url = cef_qt::toQt(url)] {
    const CefRefPtr<cef_qt::Browser> browser = cef_qt::Browser::create(options);
    browser->openFrames();
    browser->window()->load(url);
    browser->window()->show();
    browser->announce();
  });
}
