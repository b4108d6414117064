#include "platform/mac/dialogs/file_choose_dialog.h"

#include <new>

#include "platform/mac/dialogs/open_panel.h"

namespace zantrio {

bool CFileChooseDialogMac::show(std::vector<std::string>& chosenUrls) {
  return runOpenPanel(OpenPanelKind::kFiles, title(), chosenUrls);
}

std::unique_ptr<IFileChooseDialog> createFileChooseDialog() {
  return std::unique_ptr<IFileChooseDialog>(new (std::nothrow) CFileChooseDialogMac);
}

}  // namespace zantrio
