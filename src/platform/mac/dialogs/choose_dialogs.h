#pragma once

#include "files/choose_dialogs.h"

namespace zantrio {

class CFileChooseDialogMac : public IFileChooseDialog, public CFsItemChooseDialogBase {
 public:
  bool show(std::vector<std::string>& chosenUrls) override;
};

class CFolderChooseDialogMac : public IFolderChooseDialog, public CFsItemChooseDialogBase {
 public:
  bool show(std::vector<std::string>& chosenUrls) override;
};

}  // namespace zantrio
