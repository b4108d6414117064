#include "platform/mac/file_choose_dialog_mac.h"

#include <new>

#include "platform/mac/open_panel_mac.h"

namespace zantrio {

bool CFileChooseDialogMac::show(std::vector<std::string>& chosenUrls) {
  return runOpenPanel(OpenPanelKind::kFiles, title(), chosenUrls);
}

std::unique_ptr<IFileChooseDialog> createFileChooseDialog() {
  return std::unique_ptr<IFileChooseDialog>(new (std::nothrow) CFileChooseDialogMac);
}

}  // namespace zantrio
