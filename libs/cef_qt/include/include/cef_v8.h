// Script contexts of the render side.
#ifndef CEF_INCLUDE_CEF_V8_H_
#define CEF_INCLUDE_CEF_V8_H_

#include "include/cef_base.h"
#include "include/cef_browser.h"
#include "include/cef_frame.h"

// The script context of one document in one frame.
class CefV8Context : public virtual CefBaseRefCounted {
 public:
  // False once the document is unloaded.
  virtual bool IsValid() = 0;
  virtual CefRefPtr<CefBrowser> GetBrowser() = 0;
  virtual CefRefPtr<CefFrame> GetFrame() = 0;
  virtual bool IsSame(CefRefPtr<CefV8Context> that) = 0;
};

#endif  // CEF_INCLUDE_CEF_V8_H_
