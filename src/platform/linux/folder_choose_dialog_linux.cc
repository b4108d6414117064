#include "platform/linux/folder_choose_dialog_linux.h"

#include <new>

#include "platform/linux/item_panel_linux.h"

namespace zantrio {

bool CFolderChooseDialogLinux::show(std::vector<std::string>& chosenUrls) {
  return runItemPanel(ItemPanelKind::kFolder, title(), chosenUrls);
}

std::unique_ptr<IFolderChooseDialog> createFolderChooseDialog() {
  return std::unique_ptr<IFolderChooseDialog>(new (std::nothrow) CFolderChooseDialogLinux);
}

}  // namespace zantrio
