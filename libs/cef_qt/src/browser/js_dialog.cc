#include "browser/js_dialog.h"

#include "base/qt_text.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

// The first outcome counts. A callback that the client drops unanswered refuses the dialog.
class DialogCallback final : public CefJSDialogCallback {
 public:
  explicit DialogCallback(JsDialog::Done done) : done_(std::move(done)) {}
  ~DialogCallback() override { finish({true, false, QString()}); }

  void Continue(bool success, const CefString& user_input) override {
    finish({true, success, toQt(user_input)});
  }

  void finish(const JsDialog::Answer& answer) {
    if (JsDialog::Done done = std::exchange(done_, nullptr)) {
      done(answer);
    }
  }

 private:
  JsDialog::Done done_;
  IMPLEMENT_REFCOUNTING(DialogCallback);
};

}  // namespace

void JsDialog::ask(const CefRefPtr<Browser>& browser, const Question& question, Done done) {
  const CefRefPtr<CefClient> client = browser->client();
  const auto handler = client ? client->GetJSDialogHandler() : nullptr;
  if (!handler) {
    done({});
    return;
  }
  CefRefPtr<DialogCallback> callback = new DialogCallback(std::move(done));
  bool suppress = false;
  const bool taken =
      handler->OnJSDialog(browser, fromQt(question.origin), question.type, fromQt(question.text),
                          fromQt(question.proposal), callback, suppress);
  if (!taken) {
    callback->finish({suppress, false, QString()});
  }
}

}  // namespace cef_qt
