#include "files/fs_item_choose_dialog_base.h"

namespace zantrio {

void CFsItemChooseDialogBase::setTitle(const std::string& title) {
  title_ = title;
}

}  // namespace zantrio
