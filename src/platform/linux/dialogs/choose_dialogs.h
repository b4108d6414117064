#pragma once

#include "files/choose_dialogs.h"

namespace zantrio {

class CFileChooseDialogLinux : public IFileChooseDialog, public CFsItemChooseDialogBase {
 public:
  bool show(std::vector<std::string>& chosenUrls) override;
};

class CFolderChooseDialogLinux : public IFolderChooseDialog, public CFsItemChooseDialogBase {
 public:
  bool show(std::vector<std::string>& chosenUrls) override;
};

}  // namespace zantrio
