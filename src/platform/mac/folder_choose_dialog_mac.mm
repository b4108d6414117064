#include "platform/mac/folder_choose_dialog_mac.h"

#include <new>

#include "platform/mac/open_panel_mac.h"

namespace zantrio {

bool CFolderChooseDialogMac::show(std::vector<std::string>& chosenUrls) {
  return runOpenPanel(OpenPanelKind::kFolder, title(), chosenUrls);
}

std::unique_ptr<IFolderChooseDialog> createFolderChooseDialog() {
  return std::unique_ptr<IFolderChooseDialog>(new (std::nothrow) CFolderChooseDialogMac);
}

}  // namespace zantrio
