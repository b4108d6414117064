// Life of browsers.
#ifndef CEF_INCLUDE_CEF_LIFE_SPAN_HANDLER_H_
#define CEF_INCLUDE_CEF_LIFE_SPAN_HANDLER_H_

#include "include/cef_base.h"
#include "include/cef_browser.h"

class CefClient;

// Called on the UI thread.
class CefLifeSpanHandler : public virtual CefBaseRefCounted {
 public:
  using WindowOpenDisposition = cef_window_open_disposition_t;

  // A page opens a window; true prevents it. `client` is the opener's and may be replaced.
  // `target_url` is empty here, because the URL is not known yet when the window opens.
  virtual bool OnBeforePopup(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                             int /*popup_id*/, const CefString& /*target_url*/,
                             const CefString& /*target_frame_name*/,
                             WindowOpenDisposition /*target_disposition*/, bool /*user_gesture*/,
                             const CefPopupFeatures& /*popupFeatures*/,
                             CefWindowInfo& /*windowInfo*/, CefRefPtr<CefClient>& /*client*/,
                             CefBrowserSettings& /*settings*/,
                             CefRefPtr<CefDictionaryValue>& /*extra_info*/,
                             bool* /*no_javascript_access*/) {
    return false;
  }

  virtual void OnAfterCreated(CefRefPtr<CefBrowser> /*browser*/) {}

  // The page has agreed to be closed or was not asked. False closes the window; true keeps it until
  // the client closes it.
  virtual bool DoClose(CefRefPtr<CefBrowser> /*browser*/) { return false; }

  // The last call for a browser; the client must release all references to it.
  virtual void OnBeforeClose(CefRefPtr<CefBrowser> /*browser*/) {}
};

#endif  // CEF_INCLUDE_CEF_LIFE_SPAN_HANDLER_H_
