#pragma once

#include "files/choose_dialogs.h"

namespace zantrio {

class CFolderChooseDialogMac : public IFolderChooseDialog, public CFsItemChooseDialogBase {
 public:
  bool show(std::vector<std::string>& chosenUrls) override;
};

}  // namespace zantrio
