// File choosers: always handled by default here.
#ifndef CEF_INCLUDE_CEF_DIALOG_HANDLER_H_
#define CEF_INCLUDE_CEF_DIALOG_HANDLER_H_

#include "include/cef_base.h"

// Clients return null for it.
class CefDialogHandler : public virtual CefBaseRefCounted {};

#endif  // CEF_INCLUDE_CEF_DIALOG_HANDLER_H_
