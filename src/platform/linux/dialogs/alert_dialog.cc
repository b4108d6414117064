#include "platform/linux/dialogs/alert_dialog.h"

#include <new>

#include "platform/linux/application/application.h"
#include "platform/linux/dialogs/message_box.h"

namespace zantrio {
namespace {

// Puts an open notice over the window at hand, each beside the one before. Only once it is open it
// has its size.
void place(QMessageBox& notice) {
  constexpr int kStep = 28;
  static int placed = 0;
  const QWidget* window = windowForDialogs();
  if (window == nullptr) {
    return;  // the toolkit's choice: the middle of the screen
  }
  QRect area = notice.frameGeometry();
  const int offset = kStep * (placed++ % 5);
  area.moveCenter(window->geometry().center() + QPoint(offset, offset));
  notice.move(area.topLeft());
}

}  // namespace

void CAlertDialogLinux::show(const std::string& text) {
  if (!canShowWidgets()) {
    return;
  }
  QMessageBox* notice = makeMessageBox(text, QMessageBox::NoIcon, nullptr).release();
  notice->setStandardButtons(QMessageBox::Ok);
  notice->setModal(false);
  notice->setWindowFlag(Qt::WindowStaysOnTopHint);
  notice->setAttribute(Qt::WA_DeleteOnClose);  // the notice owns itself from here on
  notice->show();
  place(*notice);
}

std::unique_ptr<IAlertDialog> createAlertDialog() {
  return std::unique_ptr<IAlertDialog>(new (std::nothrow) CAlertDialogLinux);
}

}  // namespace zantrio
