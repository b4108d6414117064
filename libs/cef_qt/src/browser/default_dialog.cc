#include "browser/default_dialog.h"

#include <QInputDialog>
#include <QMessageBox>

#include "browser/browser_window.h"

namespace cef_qt {
namespace {

QDialog* makeMessage(const JsDialog::Question& question, QWidget* parent) {
  auto* box = new QMessageBox(parent);
  box->setText(question.text);
  // Not markup: the page's text is shown as it is.
  box->setTextFormat(Qt::PlainText);
  box->setStandardButtons(question.type == JSDIALOGTYPE_ALERT
                              ? QMessageBox::Ok
                              : QMessageBox::Ok | QMessageBox::Cancel);
  return box;
}

QDialog* makePrompt(const JsDialog::Question& question, QWidget* parent) {
  auto* prompt = new QInputDialog(parent);
  prompt->setLabelText(question.text.toHtmlEscaped());
  prompt->setTextValue(question.proposal);
  return prompt;
}

JsDialog::Answer answerOf(const QDialog* dialog, int result) {
  if (const auto* prompt = qobject_cast<const QInputDialog*>(dialog)) {
    return {true, result == QDialog::Accepted, prompt->textValue()};
  }
  return {true, result == QMessageBox::Ok, QString()};
}

}  // namespace

QDialog* showDefaultDialog(const CefRefPtr<Browser>& browser, const JsDialog::Question& question,
                           QObject* owner, JsDialog::Done done) {
  QWidget* parent = browser->window() ? browser->window()->widget() : nullptr;
  QDialog* dialog = question.type == JSDIALOGTYPE_PROMPT ? makePrompt(question, parent)
                                                         : makeMessage(question, parent);
  dialog->setWindowTitle(question.origin);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(dialog, &QDialog::finished, owner, [dialog, done = std::move(done)](int result) {
    done(answerOf(dialog, result));
  });
  QObject::connect(owner, &QObject::destroyed, dialog, &QObject::deleteLater);
  dialog->open();
  return dialog;
}

}  // namespace cef_qt
