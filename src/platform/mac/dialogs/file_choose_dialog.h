#pragma once

#include "files/file_choose_dialog.h"
#include "files/fs_item_choose_dialog_base.h"

namespace zantrio {

class CFileChooseDialogMac : public IFileChooseDialog, public CFsItemChooseDialogBase {
 public:
  bool show(std::vector<std::string>& chosenUrls) override;
};

}  // namespace zantrio
