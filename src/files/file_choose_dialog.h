#pragma once

#include <memory>
#include <string>
#include <vector>

#include "files/fs_item_choose_dialog.h"

namespace zantrio {

// Lets the user choose files that exist. Ownership: the caller's. Thread: UI.
class IFileChooseDialog : public virtual IFsItemChooseDialog {
 public:
  // Runs modally. Puts one absolute, percent-encoded `file:` URL for each chosen file behind what
  // `chosenUrls` holds and returns true; returns false, with `chosenUrls` as it was, when the user
  // cancelled, when nothing was chosen, or when the dialog could not be shown.
  virtual bool show(std::vector<std::string>& chosenUrls) = 0;
};

// Null when there was no memory for it.
std::unique_ptr<IFileChooseDialog> createFileChooseDialog();

}  // namespace zantrio
