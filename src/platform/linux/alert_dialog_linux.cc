#include "platform/linux/alert_dialog_linux.h"

#include <new>

#include "platform/linux/application_linux.h"
#include "platform/linux/message_box_linux.h"

namespace zantrio {

void CAlertDialogLinux::show(const std::string& text) {
  if (!canShowWidgets()) {
    return;
  }
  QMessageBox* notice = makeMessageBox(text, QMessageBox::NoIcon).release();
  notice->setStandardButtons(QMessageBox::Ok);
  notice->setModal(false);
  notice->setAttribute(Qt::WA_DeleteOnClose);  // the notice owns itself from here on
  notice->show();
}

std::unique_ptr<IAlertDialog> createAlertDialog() {
  return std::unique_ptr<IAlertDialog>(new (std::nothrow) CAlertDialogLinux);
}

}  // namespace zantrio
