#include "browser/js_dialog.h"

#include <QInputDialog>
#include <QMessageBox>
#include <QTextDocument>
#include <utility>

#include "base/qt_text.h"
#include "browser/browser_window.h"

namespace cef_qt {
namespace {

// The first result counts. A callback that the client releases without a result refuses the dialog.
class DialogCallback final : public CefJSDialogCallback {
 public:
  explicit DialogCallback(JsDialog::Done done) : done_(std::move(done)) {}
  ~DialogCallback() override { finish({true, false, QString()}); }

  void Continue(bool success, const CefString& user_input) override {
    finish({true, success, toQt(user_input)});
  }

  void finish(const JsDialog::Result& result) {
    if (JsDialog::Done done = std::exchange(done_, nullptr)) {
      done(result);
    }
  }

 private:
  JsDialog::Done done_;
  IMPLEMENT_REFCOUNTING(DialogCallback);
};

QDialog* makeMessage(const JsDialog::Request& request, QWidget* parent) {
  auto* box = new QMessageBox(parent);
  box->setText(request.text);
  // The page's text is not markup.
  box->setTextFormat(Qt::PlainText);
  box->setStandardButtons(
      request.type == JSDIALOGTYPE_ALERT ? QMessageBox::Ok : QMessageBox::Ok | QMessageBox::Cancel);
  return box;
}

QDialog* makePrompt(const JsDialog::Request& request, QWidget* parent) {
  auto* prompt = new QInputDialog(parent);
  // The page's text is not markup, and an ampersand in it marks no key, as it would in plain text.
  prompt->setLabelText(Qt::convertFromPlainText(request.text));
  prompt->setTextValue(request.proposal);
  return prompt;
}

JsDialog::Result resultOf(const QDialog* dialog, int code) {
  if (const auto* prompt = qobject_cast<const QInputDialog*>(dialog)) {
    return {true, code == QDialog::Accepted, prompt->textValue()};
  }
  return {true, code == QMessageBox::Ok, QString()};
}

}  // namespace

void JsDialog::askClient(const CefRefPtr<Browser>& browser, const Request& request, Done done) {
  const CefRefPtr<CefClient> client = browser->client();
  const auto handler = client ? client->GetJSDialogHandler() : nullptr;
  if (!handler) {
    done({});
    return;
  }
  CefRefPtr<DialogCallback> callback = new DialogCallback(std::move(done));
  bool suppress = false;
  const bool handled =
      handler->OnJSDialog(browser, fromQt(request.origin), request.type, fromQt(request.text),
                          fromQt(request.proposal), callback, suppress);
  if (!handled) {
    callback->finish({suppress, false, QString()});
  }
}

QDialog* JsDialog::showDefault(const CefRefPtr<Browser>& browser, const Request& request,
                               QObject* owner, Done done) {
  QWidget* parent = browser->window() ? browser->window()->widget() : nullptr;
  QDialog* dialog = request.type == JSDIALOGTYPE_PROMPT ? makePrompt(request, parent)
                                                        : makeMessage(request, parent);
  dialog->setWindowTitle(request.origin);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(dialog, &QDialog::finished, owner,
                   [dialog, done = std::move(done)](int code) { done(resultOf(dialog, code)); });
  QObject::connect(owner, &QObject::destroyed, dialog, &QObject::deleteLater);
  dialog->open();
  return dialog;
}

}  // namespace cef_qt
