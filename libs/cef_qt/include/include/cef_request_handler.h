// Navigation and the render process.
#ifndef CEF_INCLUDE_CEF_REQUEST_HANDLER_H_
#define CEF_INCLUDE_CEF_REQUEST_HANDLER_H_

#include "include/cef_base.h"
#include "include/cef_browser.h"
#include "include/cef_request.h"

// Called on the UI thread.
class CefRequestHandler : public virtual CefBaseRefCounted {
 public:
  using TerminationStatus = cef_termination_status_t;

  // True cancels the navigation.
  virtual bool OnBeforeBrowse(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                              CefRefPtr<CefRequest> /*request*/, bool /*user_gesture*/,
                              bool /*is_redirect*/) {
    return false;
  }

  // The page's process ended unexpectedly; a reload starts a new one.
  virtual void OnRenderProcessTerminated(CefRefPtr<CefBrowser> /*browser*/,
                                         TerminationStatus /*status*/, int /*error_code*/,
                                         const CefString& /*error_string*/) {}
};

#endif  // CEF_INCLUDE_CEF_REQUEST_HANDLER_H_
