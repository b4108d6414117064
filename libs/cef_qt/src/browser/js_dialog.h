// One alert, confirm or prompt of a page, on its way through the client.
#pragma once

#include <QString>
#include <functional>

#include "browser/browser_impl.h"
#include "include/cef_jsdialog_handler.h"

namespace cef_qt {

// Asks the client and reports the outcome exactly once. UI thread.
class JsDialog {
 public:
  struct Question {
    cef_jsdialog_type_t type;
    QString origin;
    QString text;
    QString proposal;
  };
  struct Answer {
    bool handled = false;  // false: the framework's own dialog is wanted
    bool success = false;
    QString input;
  };
  using Done = std::function<void(const Answer&)>;

  // Calls the client's handler now; `done` follows during this call or later. Without a handler the
  // question is not handled. Not for use inside Chromium's callbacks.
  static void ask(const CefRefPtr<Browser>& browser, const Question& question, Done done);
};

}  // namespace cef_qt
