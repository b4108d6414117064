#include "platform/linux/dialogs/folder_choose_dialog.h"

#include <new>

#include "platform/linux/dialogs/item_panel.h"

namespace zantrio {

bool CFolderChooseDialogLinux::show(std::vector<std::string>& chosenUrls) {
  return runItemPanel(ItemPanelKind::kFolder, title(), chosenUrls);
}

std::unique_ptr<IFolderChooseDialog> createFolderChooseDialog() {
  return std::unique_ptr<IFolderChooseDialog>(new (std::nothrow) CFolderChooseDialogLinux);
}

}  // namespace zantrio
