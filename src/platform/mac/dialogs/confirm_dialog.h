#pragma once

#include "services/confirm_dialog.h"

namespace zantrio {

class CConfirmDialogMac : public IConfirmDialog {
 public:
  // The text's bytes are taken as Mac Roman.
  bool ask(const std::string& text, int kind) override;
};

}  // namespace zantrio
