#include "browser/page_dialogs.h"

#include "services/alert_dialog.h"
#include "services/confirm_dialog.h"

namespace zantrio {
namespace {

bool confirm(const CefString& text, const CefRefPtr<CefJSDialogCallback>& callback) {
  const auto dialog = createConfirmDialog();
  if (!dialog) {
    return false;
  }
  callback->Continue(dialog->ask(text.ToString(), IConfirmDialog::kCaution), CefString());
  return true;
}

bool alert(const CefString& text, const CefRefPtr<CefJSDialogCallback>& callback) {
  const auto dialog = createAlertDialog();
  if (!dialog) {
    return false;
  }
  dialog->show(text.ToString());
  callback->Continue(true, CefString());
  return true;
}

}  // namespace

bool answerPageDialog(CefJSDialogHandler::JSDialogType type, const CefString& text,
                      const CefRefPtr<CefJSDialogCallback>& callback) {
  switch (type) {
    case JSDIALOGTYPE_CONFIRM:
      return confirm(text, callback);
    case JSDIALOGTYPE_ALERT:
      return alert(text, callback);
    default:
      return false;
  }
}

}  // namespace zantrio
