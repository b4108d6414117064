#include "platform/linux/file_choose_dialog_linux.h"

#include <new>

#include "platform/linux/item_panel_linux.h"

namespace zantrio {

bool CFileChooseDialogLinux::show(std::vector<std::string>& chosenUrls) {
  return runItemPanel(ItemPanelKind::kFiles, title(), chosenUrls);
}

std::unique_ptr<IFileChooseDialog> createFileChooseDialog() {
  return std::unique_ptr<IFileChooseDialog>(new (std::nothrow) CFileChooseDialogLinux);
}

}  // namespace zantrio
