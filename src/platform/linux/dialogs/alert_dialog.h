#pragma once

#include "services/alert_dialog.h"

namespace zantrio {

// The notices are windows of their own that stay above all others. They belong to no window, so
// that they outlive each, and that neither questions nor file dialogs, which block the window that
// they belong to, keep the user from dismissing them.
class CAlertDialogLinux : public IAlertDialog {
 public:
  void show(const std::string& text) override;
};

}  // namespace zantrio
