// Custom URL schemes.
#ifndef CEF_INCLUDE_CEF_SCHEME_H_
#define CEF_INCLUDE_CEF_SCHEME_H_

#include "include/cef_base.h"

// Passed to CefApp::OnRegisterCustomSchemes. Custom schemes are not supported.
class CefSchemeRegistrar {
 public:
  virtual ~CefSchemeRegistrar() = default;
};

#endif  // CEF_INCLUDE_CEF_SCHEME_H_
