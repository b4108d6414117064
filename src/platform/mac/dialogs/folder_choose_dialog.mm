#include "platform/mac/dialogs/folder_choose_dialog.h"

#include <new>

#include "platform/mac/dialogs/open_panel.h"

namespace zantrio {

bool CFolderChooseDialogMac::show(std::vector<std::string>& chosenUrls) {
  return runOpenPanel(OpenPanelKind::kFolder, title(), chosenUrls);
}

std::unique_ptr<IFolderChooseDialog> createFolderChooseDialog() {
  return std::unique_ptr<IFolderChooseDialog>(new (std::nothrow) CFolderChooseDialogMac);
}

}  // namespace zantrio
