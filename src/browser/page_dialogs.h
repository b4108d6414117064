#pragma once

#include "include/cef_jsdialog_handler.h"

namespace zantrio {

// Shows the page's alert or confirm dialog natively and continues the callback with the result,
// which is success for an alert. False for every other kind of dialog, and when no native dialog
// can be created. Thread: UI, which a confirm dialog blocks.
bool answerPageDialog(CefJSDialogHandler::JSDialogType type, const CefString& text,
                      const CefRefPtr<CefJSDialogCallback>& callback);

}  // namespace zantrio
