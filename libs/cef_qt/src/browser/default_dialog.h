// The dialogs of pages whose client does not show them itself.
#pragma once

#include <QDialog>

#include "browser/js_dialog.h"

namespace cef_qt {

// Shows the dialog over the browser's window; `done` follows when the user has answered it. It is
// taken back, unanswered, when `owner` goes. Gives the dialog, which deletes itself when it closes.
QDialog* showDefaultDialog(const CefRefPtr<Browser>& browser, const JsDialog::Question& question,
                           QObject* owner, JsDialog::Done done);

}  // namespace cef_qt
