#pragma once

#include "files/folder_choose_dialog.h"
#include "files/fs_item_choose_dialog_base.h"

namespace zantrio {

class CFolderChooseDialogLinux : public IFolderChooseDialog, public CFsItemChooseDialogBase {
 public:
  bool show(std::vector<std::string>& chosenUrls) override;
};

}  // namespace zantrio
