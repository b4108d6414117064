// Notifications of the render side.
#ifndef CEF_INCLUDE_CEF_RENDER_PROCESS_HANDLER_H_
#define CEF_INCLUDE_CEF_RENDER_PROCESS_HANDLER_H_

#include "include/cef_base.h"
#include "include/cef_browser.h"
#include "include/cef_frame.h"
#include "include/cef_process_message.h"
#include "include/cef_v8.h"
#include "include/cef_values.h"

// Called on TID_RENDERER. With the SDK the render side runs in processes of its own, here in the
// browser process on the UI thread. Programs must not share its state with the browser side.
class CefRenderProcessHandler : public virtual CefBaseRefCounted {
 public:
  // Called once, before all other methods.
  virtual void OnWebKitInitialized() {}

  virtual void OnBrowserCreated(CefRefPtr<CefBrowser> /*browser*/,
                                CefRefPtr<CefDictionaryValue> /*extra_info*/) {}
  virtual void OnBrowserDestroyed(CefRefPtr<CefBrowser> /*browser*/) {}

  // A document has its script context; the page's own scripts have not run yet.
  virtual void OnContextCreated(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                                CefRefPtr<CefV8Context> /*context*/) {}
  virtual void OnContextReleased(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                                 CefRefPtr<CefV8Context> /*context*/) {}

  // True if the message was handled.
  virtual bool OnProcessMessageReceived(CefRefPtr<CefBrowser> /*browser*/,
                                        CefRefPtr<CefFrame> /*frame*/,
                                        CefProcessId /*source_process*/,
                                        CefRefPtr<CefProcessMessage> /*message*/) {
    return false;
  }
};

#endif  // CEF_INCLUDE_CEF_RENDER_PROCESS_HANDLER_H_
