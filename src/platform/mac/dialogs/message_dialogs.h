#pragma once

#include "services/alert_dialog.h"
#include "services/confirm_dialog.h"

namespace zantrio {

// The notice belongs to the system: it has no parent window and outlives the application.
class CAlertDialogMac : public IAlertDialog {
 public:
  // The text's bytes are taken as Mac Roman.
  void show(const std::string& text) override;
};

class CConfirmDialogMac : public IConfirmDialog {
 public:
  // The text's bytes are taken as Mac Roman.
  bool ask(const std::string& text, int kind) override;
};

}  // namespace zantrio
