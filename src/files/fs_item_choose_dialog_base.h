#pragma once

#include <string>

#include "files/fs_item_choose_dialog.h"

namespace zantrio {

// Keeps the title for the platform's dialogs.
class CFsItemChooseDialogBase : public virtual IFsItemChooseDialog {
 public:
  void setTitle(const std::string& title) override;

 protected:
  const std::string& title() const { return title_; }

 private:
  std::string title_;
};

}  // namespace zantrio
