#include "platform/linux/dialogs/confirm_dialog.h"

#include <QPointer>
#include <QPushButton>
#include <new>

#include "platform/linux/application/application.h"
#include "platform/linux/dialogs/message_box.h"

namespace zantrio {
namespace {

QMessageBox::Icon iconFor(int kind) {
  switch (kind) {
    case IConfirmDialog::kCaution:
      return QMessageBox::Warning;
    case IConfirmDialog::kPlain:
      return QMessageBox::Information;
    default:
      return QMessageBox::Critical;
  }
}

}  // namespace

bool CConfirmDialogLinux::ask(const std::string& text, int kind) {
  if (!canShowWidgets()) {
    return true;
  }
  // The window that the question belongs to may go, and take it along, while it is open.
  const QPointer<QMessageBox> question(
      makeMessageBox(text, iconFor(kind), windowForDialogs()).release());
  question->setWindowModality(Qt::WindowModal);  // notices that stand beside it can be dismissed
  QPushButton* yes = question->addButton(QStringLiteral("&Yes"), QMessageBox::YesRole);
  QPushButton* no = question->addButton(QStringLiteral("&No"), QMessageBox::NoRole);
  question->setDefaultButton(yes);
  question->setEscapeButton(no);
  question->exec();
  const bool confirmed = question && question->clickedButton() == yes;
  delete question;
  return confirmed;
}

std::unique_ptr<IConfirmDialog> createConfirmDialog() {
  return std::unique_ptr<IConfirmDialog>(new (std::nothrow) CConfirmDialogLinux);
}

}  // namespace zantrio
