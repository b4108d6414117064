// The alert, confirm and prompt dialogs of pages.
#pragma once

#include <QDialog>
#include <QString>
#include <functional>

#include "browser/browser_impl.h"
#include "include/cef_jsdialog_handler.h"

namespace cef_qt {

// UI thread.
class JsDialog {
 public:
  struct Request {
    cef_jsdialog_type_t type;
    QString origin;
    QString text;
    QString proposal;
  };
  struct Result {
    bool handled = false;  // false: the default dialog is to be shown
    bool success = false;
    QString input;
  };
  using Done = std::function<void(const Result&)>;

  // Calls the client's handler. `done` is called exactly once, inside this call or later; without a
  // handler the result is not handled. Not for use inside Chromium's callbacks.
  static void askClient(const CefRefPtr<Browser>& browser, const Request& request, Done done);

  // Opens the default dialog over the browser's window; `done` is called when the user closes it.
  // The dialog disappears without a result when `owner` is destroyed. It deletes itself on closing.
  static QDialog* showDefault(const CefRefPtr<Browser>& browser, const Request& request,
                              QObject* owner, Done done);
};

}  // namespace cef_qt
