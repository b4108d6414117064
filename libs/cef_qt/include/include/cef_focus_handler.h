// Keyboard focus: this library always applies its default handling.
#ifndef CEF_INCLUDE_CEF_FOCUS_HANDLER_H_
#define CEF_INCLUDE_CEF_FOCUS_HANDLER_H_

#include "include/cef_base.h"

// Declared for the getter in CefClient, which returns null.
class CefFocusHandler : public virtual CefBaseRefCounted {};

#endif  // CEF_INCLUDE_CEF_FOCUS_HANDLER_H_
