// Display state of a browser.
#ifndef CEF_INCLUDE_CEF_DISPLAY_HANDLER_H_
#define CEF_INCLUDE_CEF_DISPLAY_HANDLER_H_

#include "include/cef_base.h"
#include "include/cef_browser.h"

// Called on the UI thread.
class CefDisplayHandler : public virtual CefBaseRefCounted {
 public:
  // True if the client has set the cursor. Off-screen browsers only.
  virtual bool OnCursorChange(CefRefPtr<CefBrowser> /*browser*/, CefCursorHandle /*cursor*/,
                              cef_cursor_type_t /*type*/,
                              const CefCursorInfo& /*custom_cursor_info*/) {
    return false;
  }
};

#endif  // CEF_INCLUDE_CEF_DISPLAY_HANDLER_H_
