// Resources of the framework: always the built-in ones here.
#ifndef CEF_INCLUDE_CEF_RESOURCE_BUNDLE_HANDLER_H_
#define CEF_INCLUDE_CEF_RESOURCE_BUNDLE_HANDLER_H_

#include "include/cef_base.h"

// Applications return null for it.
class CefResourceBundleHandler : public virtual CefBaseRefCounted {};

#endif  // CEF_INCLUDE_CEF_RESOURCE_BUNDLE_HANDLER_H_
