// The page's alert, confirm and prompt.
#ifndef CEF_INCLUDE_CEF_JSDIALOG_HANDLER_H_
#define CEF_INCLUDE_CEF_JSDIALOG_HANDLER_H_

#include "include/cef_base.h"
#include "include/cef_browser.h"

// Ends one dialog. Only the first call counts. UI thread.
class CefJSDialogCallback : public virtual CefBaseRefCounted {
 public:
  virtual void Continue(bool success, const CefString& user_input) = 0;
};

// Called on the UI thread.
class CefJSDialogHandler : public virtual CefBaseRefCounted {
 public:
  using JSDialogType = cef_jsdialog_type_t;

  // True if the client shows the dialog; the page waits until the callback is continued, inside the
  // call or later. False shows the framework's dialog, or none if `suppress_message` is set.
  virtual bool OnJSDialog(CefRefPtr<CefBrowser> /*browser*/, const CefString& /*origin_url*/,
                          JSDialogType /*dialog_type*/, const CefString& /*message_text*/,
                          const CefString& /*default_prompt_text*/,
                          CefRefPtr<CefJSDialogCallback> /*callback*/, bool& /*suppress_message*/) {
    return false;
  }
};

#endif  // CEF_INCLUDE_CEF_JSDIALOG_HANDLER_H_
