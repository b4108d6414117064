// Profile of a browser.
#ifndef CEF_INCLUDE_CEF_REQUEST_CONTEXT_H_
#define CEF_INCLUDE_CEF_REQUEST_CONTEXT_H_

#include "include/cef_base.h"

// Only null is supported: all browsers share the process's profile.
class CefRequestContext : public virtual CefBaseRefCounted {};

#endif  // CEF_INCLUDE_CEF_REQUEST_CONTEXT_H_
