// Notifications of the render side.
#ifndef CEF_INCLUDE_CEF_RENDER_PROCESS_HANDLER_H_
#define CEF_INCLUDE_CEF_RENDER_PROCESS_HANDLER_H_

#include "include/cef_base.h"
#include "include/cef_browser.h"
#include "include/cef_frame.h"
#include "include/cef_process_message.h"
#include "include/cef_v8.h"
#include "include/cef_values.h"

// Called on TID_RENDERER. There is no code of the program in Chromium's render processes here: the
// render side lives in the browser process, on a thread of its own, and its state must not be
// shared with the UI thread without a lock.
class CefRenderProcessHandler : public virtual CefBaseRefCounted {
 public:
  // Once, before anything else of the render side.
  virtual void OnWebKitInitialized() {}

  virtual void OnBrowserCreated(CefRefPtr<CefBrowser> /*browser*/,
                                CefRefPtr<CefDictionaryValue> /*extra_info*/) {}
  virtual void OnBrowserDestroyed(CefRefPtr<CefBrowser> /*browser*/) {}

  // A document got its script context; before the page's own scripts run.
  virtual void OnContextCreated(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                                CefRefPtr<CefV8Context> /*context*/) {}
  virtual void OnContextReleased(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                                 CefRefPtr<CefV8Context> /*context*/) {}

  // True when the message was handled.
  virtual bool OnProcessMessageReceived(CefRefPtr<CefBrowser> /*browser*/,
                                        CefRefPtr<CefFrame> /*frame*/,
                                        CefProcessId /*source_process*/,
                                        CefRefPtr<CefProcessMessage> /*message*/) {
    return false;
  }
};

#endif  // CEF_INCLUDE_CEF_RENDER_PROCESS_HANDLER_H_
