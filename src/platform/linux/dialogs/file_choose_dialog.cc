#include "platform/linux/dialogs/file_choose_dialog.h"

#include <new>

#include "platform/linux/dialogs/item_panel.h"

namespace zantrio {

bool CFileChooseDialogLinux::show(std::vector<std::string>& chosenUrls) {
  return runItemPanel(ItemPanelKind::kFiles, title(), chosenUrls);
}

std::unique_ptr<IFileChooseDialog> createFileChooseDialog() {
  return std::unique_ptr<IFileChooseDialog>(new (std::nothrow) CFileChooseDialogLinux);
}

}  // namespace zantrio
