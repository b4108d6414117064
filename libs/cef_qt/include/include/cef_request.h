// A network request.
#ifndef CEF_INCLUDE_CEF_REQUEST_H_
#define CEF_INCLUDE_CEF_REQUEST_H_

#include "include/cef_base.h"

// Read-only.
class CefRequest : public virtual CefBaseRefCounted {
 public:
  virtual CefString GetURL() = 0;
  virtual CefString GetMethod() = 0;
};

#endif  // CEF_INCLUDE_CEF_REQUEST_H_
