#pragma once

#include <memory>
#include <string>
#include <vector>

#include "files/fs_item_choose_dialog.h"

namespace zantrio {

// Lets the user choose one folder, or make a new one. Ownership: the caller's. Thread: UI.
class IFolderChooseDialog : public virtual IFsItemChooseDialog {
 public:
  // As IFileChooseDialog::show, with exactly one URL, which ends in "/".
  virtual bool show(std::vector<std::string>& chosenUrls) = 0;
};

// Null when there was no memory for it.
std::unique_ptr<IFolderChooseDialog> createFolderChooseDialog();

}  // namespace zantrio
