#pragma once

#include "include/cef_jsdialog_handler.h"

namespace zantrio {

// Shows the page's alert or confirm dialog natively and continues the callback with the answer; an
// alert always succeeds. False for every other dialog, and when there is no native one.
// Thread: UI, which a confirm dialog blocks.
bool answerPageDialog(CefJSDialogHandler::JSDialogType type, const CefString& text,
                      const CefRefPtr<CefJSDialogCallback>& callback);

}  // namespace zantrio
